#include "ReaderSupport.h"

#include <algorithm>

namespace {

const char* const kBeginning =
    "<QUALIFIER.DECLARATION NAME='Key' TYPE='boolean'/><QUALIFIER.DECLARATION NAME='Abstract' TYPE='boolean'/>"
    "<QUALIFIER.DECLARATION NAME='Association' TYPE='boolean'/>"
    "<QUALIFIER.DECLARATION NAME='Text' TYPE='string' OVERRIDABLE='false'/>"
    "<VALUE.OBJECT><CLASS NAME='A'>"
    "<PROPERTY NAME='Id' TYPE='string'><QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER></PROPERTY>"
    "<PROPERTY NAME='N' TYPE='uint32'/><PROPERTY NAME='When' TYPE='datetime'/>"
    "<PROPERTY.ARRAY NAME='Tags' TYPE='string'/></CLASS></VALUE.OBJECT>"
    "<VALUE.OBJECT><CLASS NAME='B' SUPERCLASS='A'/></VALUE.OBJECT>"
    "<VALUE.OBJECT><CLASS NAME='L'>"
    "<QUALIFIER NAME='Association' TYPE='boolean'><VALUE>true</VALUE></QUALIFIER>"
    "<PROPERTY.REFERENCE NAME='From' REFERENCECLASS='A'><QUALIFIER NAME='Key' TYPE='boolean'><VALUE>true</VALUE>"
    "</QUALIFIER></PROPERTY.REFERENCE><PROPERTY.REFERENCE NAME='To' REFERENCECLASS='A'/></CLASS></VALUE.OBJECT>";

std::string TypeText(const TCIMValue& value) {
    std::string text = (TypeOf(value) & 15) == 0 ? "none" : value.GetType().ToString();
    if (value.IsArray()) text += "[" + std::to_string(value.GetMaxArraySize()) + "]";
    if (value.IsReference() && value.GetReferencedClass() != nullptr)
        text += "(" + value.GetReferencedClass()->GetName() + ")";
    return text;
}

std::string QualifiersOf(const ICIMAllowQualifiers& carrier) {
    std::string text;
    for (const TCIMQualifier* qualifier : carrier.EnumerateQualifiers())
        text += " {" + qualifier->GetName() + "=" + TextOf(qualifier->GetValue()) + "/" +
                std::to_string(qualifier->GetFlavor()) + "}";
    return text;
}

std::string Told(const TCIMQualifierDecl& declaration) {
    return "qualifier " + declaration.GetName() + " " + TypeText(declaration.GetValue()) + "=" +
           TextOf(declaration.GetValue()) + " scope " + std::to_string(declaration.GetScope()) + " flavor " +
           std::to_string(declaration.GetFlavor());
}

void List(const TCIMClass& cls, std::vector<std::string>& lines) {
    lines.push_back("class " + cls.GetName() + ":" + cls.GetSuperClass()->GetName() + QualifiersOf(cls));
    for (const TCIMPropertyDecl* property : cls.EnumeratePropertyDecls())
        if (property->GetClass() == &cls)
            lines.push_back("property " + cls.GetName() + "." + property->GetName() + " " +
                            TypeText(property->GetValue()) + "=" + TextOf(property->GetValue()) +
                            QualifiersOf(*property));
    for (const TCIMInstance* instance : cls.EnumerateInstances(false)) {
        lines.push_back("instance " + instance->BuildPath().GetPath());
        for (const TCIMProperty* property : instance->EnumerateProperties())
            if (!property->GetPropagated())
                lines.back() += " " + property->GetName() + "=" + TextOf(property->GetValue());
    }
}

/// Log lines of a document that failed, with the usual ones cut to what differs.
std::vector<std::string> Shortened(std::vector<std::string> log, kyrStatusCode status) {
    const std::string refusal = "0:CIM-XML Parser line 1:";
    const std::string name = TKYRException(status).what();
    if (log.empty() || log.back() != "0:TCIMXMLParser: Threw exception " + name + " on line 1") {
        log.push_back("at once " + name);
        return log;
    }
    log.back() = name;
    if (log.size() == 2 && status == kyrStatusInvalidSpecificationDocument && log[0].rfind(refusal, 0) == 0)
        log = {"!" + log[0].substr(refusal.size())};
    return log;
}

}  // namespace

std::string Class(const std::string& name, const std::string& content, const std::string& superclass) {
    return "<VALUE.OBJECT><CLASS NAME='" + name + "' SUPERCLASS='" + superclass + "'>" + content +
           "</CLASS></VALUE.OBJECT>";
}

std::string Instance(const std::string& className, const std::string& content) {
    return "<VALUE.OBJECT><INSTANCE CLASSNAME='" + className + "'>" + content + "</INSTANCE></VALUE.OBJECT>";
}

std::string OfA(const std::string& content) {
    return Instance("a", "<PROPERTY NAME='ID' TYPE='string'><VALUE>k</VALUE></PROPERTY>" + content);
}

TReader::TReader(LogCapture& log) : fReaderLog(log) { EXPECT_EQ(ReadGroup(kBeginning).rfind("qualifier ", 0), 0u); }

std::string TReader::Read(const std::string& document, bool tr907Mode) {
    fReaderLog.TakeLines();
    std::string text = std::string(1, '\0') + document;
    TCIMXMLParser parser(&fContainer);
    if (tr907Mode) parser.SetTR907Mode();
    const kyrStatusCode status = StatusOf([&] { parser.Parse(&text[1]); });
    std::vector<std::string> lines = fReaderLog.TakeLines();
    if (status != kyrStatusOK) lines = Shortened(lines, status);
    for (const std::string& object : NewObjects()) lines.push_back(object);
    fCollected = NamesOf(parser.GetClassesCollected());
    return Joined(lines, "; ");
}

std::string TReader::ReadGroup(const std::string& content, bool tr907Mode) {
    return Read("<CIM><DECLARATION><DECLGROUP>" + content + "</DECLGROUP></DECLARATION></CIM>", tr907Mode);
}

std::vector<std::string> TReader::NewObjects() {
    std::vector<std::string> all;
    for (const TCIMQualifierDecl* declaration : fContainer.EnumerateQualifiers()) all.push_back(Told(*declaration));
    for (const TCIMClass* cls : fContainer.GetRootClass()->EnumerateSubClasses(true)) List(*cls, all);
    std::vector<std::string> added = all;
    for (const std::string& old : fObjects) added.erase(std::find(added.begin(), added.end(), old));
    fObjects = all;
    return added;
}
