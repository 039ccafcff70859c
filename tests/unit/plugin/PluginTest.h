#ifndef PLUGINTEST_H
#define PLUGINTEST_H

#include <algorithm>
#include <filesystem>

#include "kyr/IPlugin.h"
#include "kyr/TPluginManager.h"
#include "kyr/TQueryManager.h"
#include "support/SchemaBuilder.h"

/// A plugin root of its own, which is the current directory, with a plugin manager and a query manager on it. Libraries
/// are copied into it under names that never come again: the loader then takes each for a new one and runs its
/// constructors.
class PluginTest : public LoggedTest {
protected:
    PluginTest() {
        std::filesystem::current_path(fRoot.Path());
        TQueryManager::Initialize();
        for (const char* name : {"KEY", "ABSTRACT", "ASSOCIATION", "DONTCOLLECT", "PLUGINNAME", "PLUGINVERSION"})
            SchemaBuilder(*fManager.GetSchema()).Declaration(name);
    }
    ~PluginTest() override {
        delete TQueryManager::GetInstance();
        delete TPluginManager::GetInstance();
        std::filesystem::current_path(fBefore);
    }

    static std::string Qualifier(const std::string& name, const std::string& value = "true") {
        return "<QUALIFIER NAME=\"" + name + "\" TYPE=\"boolean\"><VALUE>" + value + "</VALUE></QUALIFIER>";
    }
    /// A class with the key Name.
    static std::string Class(const std::string& name, const std::string& qualifiers = "",
                             const std::string& attributes = "") {
        return "<VALUE.OBJECT><CLASS NAME=\"" + name + "\"" + attributes + ">" + qualifiers +
               "<PROPERTY NAME=\"Name\" TYPE=\"string\">" + Qualifier("KEY") + "</PROPERTY></CLASS></VALUE.OBJECT>";
    }

    /// Puts a fixture's library, and the document if there is one, where the manager finds it.
    void Install(const std::string& fixture, const std::string& document) {
        static int count = 0;
        const std::string name = "d" + std::to_string(++count);
        fPath = "./" + name + "/lib" + name + ".pi.so";
        std::filesystem::create_directory(name);
        std::filesystem::copy_file(KYRCORE_FIXTURES "/unit_" + fixture + "/libunit_" + fixture + ".pi.so", fPath);
        if (!document.empty()) fRoot.Write(name + "/" + name + ".properties.xml", document);
    }
    void InstallAndLoad(const std::string& fixture, const std::string& objects) {
        Install(fixture, "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><DECLARATION><DECLGROUP>" + objects +
                             "</DECLGROUP></DECLARATION></CIM>");
        fManager.FindAndLoadPlugins();
    }
    size_t Count() { return fManager.GetPluginsContainer().size(); }
    IPlugin& Last() { return *fManager.GetPluginsContainer().back(); }
    kyrStatusCode StatusOfClasses() {
        return StatusOf([this] { Last().GetClassesCollected(); });
    }
    TCIMClass* Find(const std::string& name) { return fManager.GetSchema()->FindClass(name); }
    /// The log's lines but those for debugging.
    TLines TakeWords() {
        TLines lines = fLog.TakeLines();
        lines.erase(std::remove_if(lines.begin(), lines.end(), [](const auto& line) { return line[0] == '3'; }),
                    lines.end());
        return lines;
    }

    TempFolder fRoot;
    std::string fPath;  // of the library that was installed last
    std::filesystem::path fBefore = std::filesystem::current_path();
    TPluginManager& fManager = (TPluginManager::Initialize("."), *TPluginManager::GetInstance());
};

#endif
