#ifndef KYR_XML_TCIMXMLPARSER_H
#define KYR_XML_TCIMXMLPARSER_H

#include <boost/make_shared.hpp>
#include <boost/shared_ptr.hpp>
#include <cstdint>
#include <cstring>
#include <map>
#include <stack>
#include <string>
#include <utility>
#include <vector>

#include "kyr/TCIMQualifierDecl.h"
#include "kyr/TCIMValue.h"
#include "kyr/TKYRException.h"
#include "xml/TXmlParser.h"

class ICIMAllowQualifiers;
class TCIMClass;
class TCIMInstance;
class TCIMPropertyDecl;
class TCIMReference;
class TContainer;

/// Builds the objects of one CIM-XML document in a container. A stack of states follows the open elements; the one
/// on top decides what a child means.
class TCIMXMLParser : public TXmlParser {
public:
    explicit TCIMXMLParser(TContainer* container);
    ~TCIMXMLParser() override;

    /// Takes a property of an instance with the type of its declaration, whatever its own type attribute says.
    void SetTR907Mode() { fTR907Mode = true; }
    /// The classes that the document has added, in order. The container owns them.
    std::vector<TCIMClass*> GetClassesCollected() const { return fClassesCollected; }

    void StartElement(const char* name, TAttributes& attributes) override;
    void EndElement(const char* name) override;
    void processingInstruction(const char* target, const char* data) override;
    void characters(const char* text, unsigned int length) override;
    void notationDecl(const char* name, const char* first, const char* second) override;
    /// Refuses the document: logs the message with its line, and raises kyrStatusInvalidSpecificationDocument.
    [[noreturn]] void FatalError(const char* message) final;

    /// A bad date-time becomes 1970-01-01, with a line in the log; any other text or type that cannot be read, a
    /// default value.
    TCIMValue ParseValue(TCIMValue::TCIMType type, std::string& text);
    static bool ConvertBool(std::string& text);
    static unsigned int ConvertUnsignedInt(std::string& text);

    // Each takes one attribute if it has the right name; false: it is another.
    using TAttribute = TAttributes::iterator;
    static bool HandleCIMName(TAttribute attribute, std::string* target);
    static bool HandleCIMType(TAttribute attribute, TCIMValue::TCIMType* target);
    static bool HandleClassOrigin(TAttribute attribute, std::string* target);
    static bool HandlePropagated(TAttribute attribute, bool* target);
    static bool HandleArraySize(TAttribute attribute, unsigned int* target);
    static bool HandleSuperClass(TAttribute attribute, std::string* target);
    static bool HandleClassName(TAttribute attribute, std::string* target);
    static bool HandleReferenceClass(TAttribute attribute, std::string* target);
    static bool HandleQualifierFlavor(TAttribute attribute, TCIMQualifierDecl::EFlavor* target);

protected:
    /// One open element. fPhase is the position in its content model.
    class TParseState {
    public:
        TParseState() = default;
        TParseState(const TParseState&) = delete;
        TParseState& operator=(const TParseState&) = delete;
        virtual ~TParseState();

        virtual void StartElement(TCIMXMLParser& parser, std::string& name, TAttributes& attributes);
        /// Pops the stack, and with it this state: the last act of every override.
        virtual void EndElement(TCIMXMLParser& parser, std::string& name);
        virtual void HandleAttrs(TCIMXMLParser& parser, TAttributes& attributes);

    protected:
        std::int32_t fPhase = 0;
    };

    // The document and its declarations.
    class TStateStart;
    class TStateCIM;
    class TStateDeclaration;
    class TStateDeclGroup;
    class TStateDeclGroupWithName;
    class TStateDeclGroupWithPath;
    class TStateQualifierDeclaration;
    class TStateScope;
    // What carries a class or an instance into the container.
    class TStateAnyWrapper;
    class TStateValueObject;
    class TStateValueNamedObject;
    class TStateValueObjectWithPath;
    class TStateValueObjectWithLocalPath;
    class TStateValueNamedInstance;  // no element leads here
    // Values.
    class TStateValue;
    class TStateValueArray;
    class TStateValueReference;
    class TStateValueRefArray;  // no element leads here
    // Paths and references.
    class TStateTwoElements;
    class TStateNamespacePath;
    class TStateLocalNamespacePath;
    class TStateHost;
    class TStateNamespace;
    class TStateClassPath;
    class TStateLocalClassPath;
    class TStateClassName;
    class TStateInstancePath;
    class TStateLocalInstancePath;
    class TStateInstanceName;
    class TStateKeyBinding;
    class TStateKeyValue;
    class TStateObjectPath;  // no element leads here
    // Classes, instances, properties and qualifiers.
    class TStateClass;
    class TStateInstance;
    class TStateQualifier;
    class TStateAnyPropertyDecl;
    class TStatePropertyDecl;
    class TStatePropertyArrayDecl;
    class TStatePropertyReferenceDecl;
    class TStateAnyProperty;
    class TStateProperty;
    class TStatePropertyArray;
    class TStatePropertyReference;
    // Messages and requests.
    class TStateMessage;
    class TStateMultiReq;
    class TStateSimpleReq;
    class TStateIMethodCall;
    class TStateIParamValue;

    /// Pushes the state of a child and shows it the attributes. A parent has changed its own fields before.
    template <typename TState, typename... TArguments>
    void Enter(TAttributes& attributes, TArguments&&... arguments) {
        fStates.push(boost::make_shared<TState>(std::forward<TArguments>(arguments)...));
        fStates.top()->HandleAttrs(*this, attributes);
    }
    /// Shows a child's attributes to the state on top, which is the parent itself when the child has no state.
    void HandleAttrsOnTop(TAttributes& attributes);

    /// Runs what adds an object that the container may have already; false if it has.
    template <typename TAction>
    static bool AddUnlessPresent(TAction&& add) {
        try {
            add();
            return true;
        } catch (const TKYRException& e) {
            if (e.fCode == kyrStatusAlreadyExists) return false;
            throw TKYRException(e.fCode);
        }
    }

    [[noreturn]] void FatalError(const std::string& message);
    [[noreturn]] void Unexpected(const std::string& name);
    [[noreturn]] void Corrupt();

    std::stack<boost::shared_ptr<TParseState>> fStates;
    TContainer* fContainer;
    std::vector<TCIMClass*> fClassesCollected;
    std::string fText;
    bool fTR907Mode = false;

private:
    /// Counts the states on the stack that will read fText, since text outside them is lost anyway.
    class TTextReader {
    public:
        explicit TTextReader(TCIMXMLParser& parser) : fCount(parser.fTextReaders) {
            parser.fText.clear();
            ++fCount;
        }
        TTextReader(const TTextReader&) = delete;
        TTextReader& operator=(const TTextReader&) = delete;
        ~TTextReader() { --fCount; }

    private:
        unsigned int& fCount;
    };

    std::string& LowerCase(const char* name);
    [[noreturn]] void ReportAndThrow(const TKYRException& e);

    unsigned int fTextReaders = 0;
    std::string fName;  // of the present element, in lower case
};

/// Whether a name is this literal.
template <std::size_t kSize>
inline bool Is(const std::string& name, const char (&literal)[kSize]) {
    return name.size() == kSize - 1 && std::memcmp(name.data(), literal, kSize - 1) == 0;
}
inline TCIMValue::TCIMType ArrayOf(TCIMValue::TCIMType type) {
    return TCIMValue::TCIMType::ECIMType(type | TCIMValue::TCIMType::eCIMArrayFlag);
}

#endif
