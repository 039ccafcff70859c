#include <CLI/App.hpp>

#include "base/Pager.h"
#include "command/Command.h"
#include "inventory/Inventory.h"
#include "json/Json.h"
#include "kyr/TContainer.h"
#include "model/ClassNames.h"
#include "render/SchemaText.h"

namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  kyr schema disks\n"
    "  kyr schema machine.xml.gz --json-schema\n\n";

class TSchemaCommand : public TCommand {
public:
    explicit TSchemaCommand(CLI::App& app) : TCommand(app, "schema", "Print the tree of classes, or one class") {
        SetExamples(kExamples);
        fApp.validate_positionals();
        AddFile()->check(CheckFile);
        fApp.add_option("CLASS", fClassName, "The class to describe")->type_name("")->check(CheckNotEmpty);
        AddPaging();
        fApp.add_flag("--json-schema", fJsonSchema, "Print a JSON Schema of all that --json prints");
    }

    EExit Run(TOutput& output) override {
        TInventory inventory(fSession);
        inventory.LoadPlugins();
        const TCIMClass* const only = inventory.LookUp([this](const TContainer& schema) {
            return fClassName.empty() ? nullptr : &GetClassNamed(schema, fClassName);
        });
        Print(inventory.Container(), only, output);
        return inventory.Conclude();
    }

private:
    void Print(const TContainer& schema, const TCIMClass* only, TOutput& output) const {
        if (fJsonSchema) return WriteJsonSchema(schema, output);
        if (fJson) return WriteSchemaJson(schema, only, output);
        const TPager pager(output, fPages);
        only != nullptr ? PrintClass(*only, output) : PrintClassTree(schema, output);
    }

    std::string fClassName;  // empty: the tree
    bool fJsonSchema = false;
};

}  // namespace

std::unique_ptr<TCommand> MakeSchemaCommand(CLI::App& app) { return std::make_unique<TSchemaCommand>(app); }
