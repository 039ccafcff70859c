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
#include "xml/ElementName.h"
#include "xml/TStateMemory.h"
#include "xml/TXmlParser.h"

class ICIMAllowQualifiers;
class TCIMClass;
class TCIMInstance;
class TCIMPropertyDecl;
class TCIMReference;
class TContainer;

/// Builds the objects of one CIM-XML document in a container. There is a stack with one state for each open element;
/// the state on top handles the child elements and the end tag.
class TCIMXMLParser : public TXmlParser {
public:
    explicit TCIMXMLParser(TContainer* container);
    ~TCIMXMLParser() override;

    /// Instance properties then have the type of their declaration, and their TYPE attribute is not checked.
    void SetTR907Mode() { fTR907Mode = true; }
    /// The classes that the document has added, in document order. The container owns them.
    std::vector<TCIMClass*> GetClassesCollected() const { return fClassesCollected; }

    void StartElement(const char* name, TAttributes& attributes) override;
    void EndElement(const char* name) override;
    void processingInstruction(const char* target, const char* data) override;
    void characters(const char* text, unsigned int length) override;
    void notationDecl(const char* name, const char* first, const char* second) override;
    /// Logs the message with the line number and raises kyrStatusInvalidSpecificationDocument.
    [[noreturn]] void FatalError(const char* message) final;

    /// A bad date-time is logged and becomes 1970-01-01; any other failure gives a default TCIMValue.
    TCIMValue ParseValue(TCIMValue::TCIMType type, std::string& text);
    static bool ConvertBool(std::string& text);
    static unsigned int ConvertUnsignedInt(std::string& text);

    // Each stores the value of one attribute if the attribute has the right name, and returns whether it had.
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
    /// The state of one open element. fPhase is the position in its content model.
    class TParseState {
    public:
        TParseState() = default;
        TParseState(const TParseState&) = delete;
        TParseState& operator=(const TParseState&) = delete;
        virtual ~TParseState();

        virtual void StartElement(TCIMXMLParser& parser, EElement element, TAttributes& attributes);
        /// Pops this state off the stack, which destroys it: the last call in every override.
        virtual void EndElement(TCIMXMLParser& parser);
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
    // Elements that hold one class or instance.
    class TStateAnyWrapper;
    class TStateValueObject;
    class TStateValueNamedObject;
    class TStateValueObjectWithPath;
    class TStateValueObjectWithLocalPath;
    class TStateValueNamedInstance;  // no element of a document leads to this state
    // Values.
    class TStateValue;
    class TStateValueArray;
    class TStateValueReference;
    class TStateValueRefArray;  // no element of a document leads to this state
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
    class TStateObjectPath;  // no element of a document leads to this state
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

    /// Pushes the state of a child element and gives it the attributes. The caller must have updated its own fields
    /// before.
    template <typename TState, typename... TArguments>
    void Enter(TAttributes& attributes, TArguments&&... arguments) {
        Push<TState>(std::forward<TArguments>(arguments)...);
        fStates.top()->HandleAttrs(*this, attributes);
    }
    template <typename TState, typename... TArguments>
    void Push(TArguments&&... arguments) {
        const TStateAllocator<TState> allocator(fMemory);
        fStates.push(boost::allocate_shared<TState>(allocator, std::forward<TArguments>(arguments)...));
    }
    /// Gives attributes to the state on top. For a child element without a state that is the parent's own state.
    void HandleAttrsOnTop(TAttributes& attributes);

    /// Runs the action, which adds an object; false if it raised kyrStatusAlreadyExists.
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
    /// Refuses the element that is being started.
    [[noreturn]] void Unexpected();
    [[noreturn]] void Corrupt();

    TStateMemory fMemory;  // of the states
    std::stack<boost::shared_ptr<TParseState>, std::vector<boost::shared_ptr<TParseState>>> fStates;
    TContainer* fContainer;
    std::vector<TCIMClass*> fClassesCollected;
    std::string fText;
    std::vector<TCIMValue> fElements;  // of the array being read: arrays do not nest
    bool fTR907Mode = false;

private:
    /// While one of these lives, text is collected in fText; otherwise nobody would read it.
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

    /// The name of an element as it was written. Most are written alike, so that few names have to be lower-cased.
    struct TWrittenName {
        static constexpr std::size_t kLongest = 32;

        EElement element = EElement::eUnknown;
        std::size_t length = 0;
        char text[kLongest];
    };

    std::string LowerCase(const char* name) const;
    EElement ElementOf(const char* name);
    [[noreturn]] void ReportAndThrow(const TKYRException& e);

    unsigned int fTextReaders = 0;
    const char* fName = "";  // of the element that is being started, as written
    TWrittenName fWrittenNames[64];
};

/// Compares a name with a literal.
template <std::size_t kSize>
inline bool Is(const std::string& name, const char (&literal)[kSize]) {
    return name.size() == kSize - 1 && std::memcmp(name.data(), literal, kSize - 1) == 0;
}
inline TCIMValue::TCIMType ArrayOf(TCIMValue::TCIMType type) {
    return TCIMValue::TCIMType::ECIMType(type | TCIMValue::TCIMType::eCIMArrayFlag);
}

#endif
