// What a plugin's process delivers, from its record stream to the saved file. If the first byte is even, the rest is
// what stands on the stream. If it is odd, the rest makes a report and instances, which are put on a stream as a
// plugin's process does it: all of them must arrive as they were. In both cases the host merges what it gets, writes
// the states, saves everything and reads it back.
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <list>
#include <sstream>

#include "base/ExitStatus.h"
#include "base/Locations.h"
#include "isolation/InstanceMerger.h"
#include "isolation/ReportRecords.h"
#include "kyr/TCIMClass.h"
#include "kyr/TCIMInstance.h"
#include "kyr/TCIMProperty.h"
#include "kyr/TCIMPropertyDecl.h"
#include "model/ClassNames.h"
#include "model/ValueVisitor.h"
#include "saved/SavedCollection.h"
#include "states/StateWriter.h"
#include "support/CallsSchema.h"
#include "support/ContainerText.h"
#include "support/FuzzSupport.h"

namespace fs = std::filesystem;

namespace {

using CIM = TCIMValue::TCIMType;

/// The files of a run.
class TFolder {
public:
    TFolder() {
        std::string name = (fs::temp_directory_path() / "kyr-fuzz-XXXXXX").string();
        Require(mkdtemp(name.data()) != nullptr, "a temporary folder can be made");
        fPath = name;
        SaveCollection(CallsContainer(), Path("schema.xml"), false);
    }
    ~TFolder() { fs::remove_all(fPath); }
    TFolder(const TFolder&) = delete;
    TFolder& operator=(const TFolder&) = delete;

    std::string Path(const char* name) const { return fPath / name; }

private:
    fs::path fPath;
};

const TFolder& Folder() {
    static const TFolder folder;
    return folder;
}

std::vector<TCIMClass*> ReadSchema(TContainer& container) {
    return container.PopulateContainerFromFile(Folder().Path("schema.xml"));
}

// What cannot be saved is refused with a reason. Beside the schema, the file has at most so many bytes.
void CheckSaving(const TContainer& container, size_t most) {
    const std::string path = Folder().Path("saved.xml");
    try {
        SaveCollection(container, path, false);
    } catch (const TCommandError&) {
        return;
    }
    Require(fs::file_size(path) <= fs::file_size(Folder().Path("schema.xml")) + most, "instances were charged enough");
    TContainer read;
    read.PopulateContainerFromFile(path);
    Require(TextOf(read) == TextOf(container), "what was saved reads back as it was");
}

/// A container that gets what stands on a stream.
class THost {
public:
    THost() {
        fLibraries.emplace_back();
        fLibraries.front().path = "./f/libf.pi.so";
        fLibraries.front().classes = ReadSchema(fContainer);
    }

    TPluginReport& Report() { return fLibraries.front().report; }
    const TContainer& Container() const { return fContainer; }

    void Merge(std::string_view records) {
        TInstanceMerger merger(fLibraries.front(), fContainer, fRoom, 30);
        for (const EPass pass : {EPass::eSmallParts, EPass::eRest, EPass::eAssociations})
            while (merger.Take(records, pass, TTimeSlice()) == TInstanceMerger::EProgress::eOutOfTime) continue;
        merger.Conclude();
    }

    void Save(bool withStates) {
        if (withStates) {
            fContainer.PopulateContainerFromFile(FindStateDocument());
            WriteStates(fLibraries, {}, TClassSelection::All(), 0, fContainer);
        }
        CheckSaving(fContainer, withStates ? SIZE_MAX / 2 : TStorageRoom(0).Bytes() - fRoom.Bytes());
    }

private:
    std::list<TPluginLibrary> fLibraries{};
    TPluginContainer fContainer;
    TStorageRoom fRoom{0};
};

void TakeHostileStream(std::string_view records, bool withStates) {
    THost host;
    ReadReport(records, host.Report());
    host.Merge(records);
    host.Save(withStates);
}

/// A plugin's process, as far as its stream goes.
class TPlugin {
public:
    explicit TPlugin(TByteReader& input) : fInput(input), fClasses(ReadSchema(fContainer)) {
        fContainer.StartStreaming(fStream, [] {});
    }

    void Run() {
        // As C strings, which is what a plugin gives.
        fReport.plugins.push_back(
            {fInput.Text().c_str(), fInput.Text().c_str(), fInput.Text().c_str(), fInput.Byte(), true});
        fReport.loadFailure = fInput.Text().c_str();
        PutPlugins(fStream, fReport);
        for (const bool associations : {false, true}) Answer(associations);
    }

    std::string_view Records() const { return fStream.Records(); }
    const TPluginReport& Report() const { return fReport; }
    const TContainer& Container() const { return fContainer; }

private:
    void Answer(bool associations) {
        std::vector<TCIMClass*> asked;
        for (TCIMClass* cls : fClasses)
            if (cls->IsAssociation() == associations) asked.push_back(cls);
        fReport.dataCalls.push_back({associations, NamesOf(asked), true, {fInput.Text().c_str(), associations}});
        PutDataCall(fStream, asked);
        for (unsigned int count = fInput.Byte() % 8; count > 0; --count)
            StoreInstance(*asked[fInput.Byte() % asked.size()]);
        PutDataCallEnd(fStream, fReport.dataCalls.back().failure);
    }

    void StoreInstance(TCIMClass& cls) {
        StatusOf([&] {
            std::unique_ptr<TCIMInstance> instance(fContainer.AllocateInstance(&cls));
            FillProperties(*instance, true);
            instance->Validate();
            TCIMInstance* const stored = instance.release();
            stored->AddToContainer();
            fStored.push_back(stored);
        });
        if (fStored.empty() || fInput.Byte() % 4 != 0) return;
        TCIMInstance& again = *fStored[fInput.Byte() % fStored.size()];
        StatusOf([&] {
            FillProperties(again, false);
            again.AddToContainer();
        });
    }

    void FillProperties(TCIMInstance& instance, bool withKeys) {
        for (const TCIMPropertyDecl* declaration : instance.GetClass()->EnumeratePropertyDecls()) {
            const bool isKey = declaration->FindQualifier("Key") != nullptr;
            if (isKey ? withKeys : fInput.Byte() % 4 == 0)
                StatusOf([&] { instance.SetPropertyValue(declaration->GetName(), Like(declaration->GetValue())); });
        }
    }

    TCIMValue Like(const TCIMValue& declared) {
        if (declared.IsReference()) return Reference(*declared.GetReferencedClass());
        if (!declared.IsArray()) return Scalar(declared.GetType());
        const auto element = static_cast<CIM::ECIMType>(declared.GetType() & ~CIM::eCIMArrayFlag);
        std::vector<TCIMValue> elements;
        for (unsigned int count = fInput.Byte() % 4; count > 0; --count) elements.push_back(Scalar(element));
        return TCIMValue(element, 0, elements);
    }

    TCIMValue Scalar(CIM type) {
        if (fInput.Byte() % 16 == 15) return TCIMValue(type, 0);
        return VisitType(type, TOverloads{[&](TContentType<std::string>) { return TCIMValue(fInput.Text()); },
                                          [&](TContentType<TCIMDateTime>) { return TCIMValue(DateTime()); },
                                          [&](auto) {
                                              std::string text = fInput.Text();
                                              return TCIMValue(type, text, fContainer);
                                          }});
    }

    TCIMDateTime DateTime() {
        const auto number = [this] { return static_cast<unsigned short>(fInput.Byte()); };
        if (number() % 2 == 0) return TCIMDateTime(number() * 300u, number(), number(), number(), number() * 4000u);
        return TCIMDateTime(static_cast<unsigned short>(1970 + number()), number(), number(), number(), number(),
                            number(), number(), static_cast<short>(number()));
    }

    TCIMValue Reference(TCIMClass& cls) {
        if (!fStored.empty() && fInput.Byte() % 2 == 0)
            if (const TCIMInstance& target = *fStored[fInput.Byte() % fStored.size()];
                target.GetClass()->IsSubclassOf(&cls))
                return TCIMValue(target.BuildPath());
        TCIMReference reference(&fContainer);
        reference.SetClass(cls);
        for (const std::string& key : cls.EnumerateKeyNames())
            reference.AddKeyValue(key, Like(cls.GetPropertyDecl(key)->GetValue()));
        return TCIMValue(reference);
    }

    TByteReader& fInput;
    TPluginContainer fContainer;
    std::vector<TCIMClass*> fClasses;
    TRecordStream fStream;
    TPluginReport fReport;
    std::vector<TCIMInstance*> fStored;
};

std::string TextOf(const TPluginReport& report) {
    std::ostringstream text;
    for (const TPluginInfo& plugin : report.plugins)
        text << plugin.name << '\n'
             << plugin.version << '\n'
             << plugin.interfaceVersion << '\n'
             << plugin.type << plugin.initialised << '\n';
    text << report.loadFailure << '\n';
    for (const TDataCall& call : report.dataCalls) {
        text << call.associations << call.finished << call.failure.text << call.failure.status << '\n';
        for (const std::string& name : call.asked) text << name << '\n';
    }
    return text.str();
}

void TakeHonestStream(TByteReader input, bool withStates) {
    TPlugin plugin(input);
    plugin.Run();
    THost host;
    Require(ReadReport(plugin.Records(), host.Report()), "a report is read");
    Require(TextOf(host.Report()) == TextOf(plugin.Report()), "a report arrives as it was");
    host.Merge(plugin.Records());
    Require(host.Report().messages.empty(), "what a plugin's process could store is not refused");
    Require(TextOf(host.Container()) == TextOf(plugin.Container()), "instances arrive as they were");
    host.Save(withStates);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size == 0) return 0;
    const TRunLog log;
    const bool isHonest = (data[0] & 1) != 0, withStates = (data[0] & 2) != 0;
    if (isHonest)
        TakeHonestStream(TByteReader(data + 1, size - 1), withStates);
    else
        TakeHostileStream({reinterpret_cast<const char*>(data + 1), size - 1}, withStates);
    return 0;
}
