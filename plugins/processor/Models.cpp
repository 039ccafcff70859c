#include "Models.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace {

std::optional<double> ParseReal(const std::string& text) {
    double number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || end != text.data() + text.size() || !(number >= 0 && number < 1e9)) return {};
    return number;
}

// "3800.000000MHz" on POWER, a number alone elsewhere.
std::optional<uint32_t> ParseMegahertz(const std::string& text) {
    constexpr std::string_view kUnit = "MHz";
    const size_t unit = EndsWith(text, kUnit) ? kUnit.size() : 0;
    const std::optional<double> number = ParseReal(text.substr(0, text.size() - unit));
    if (!number) return {};
    return static_cast<uint32_t>(std::lround(*number));
}

std::optional<std::vector<std::string>> ParseWords(const std::string& text) {
    const std::vector<std::string_view> words = Split(text, ' ');
    return std::vector<std::string>(words.begin(), words.end());
}

// "46 bits physical, 48 bits virtual"
std::optional<uint16_t> ParseAddressWidth(const std::string& text, std::string_view kind) {
    for (const std::string_view part : Split(text, ','))
        if (part.find(kind) != std::string_view::npos) return ParseNumber<uint16_t>(part.substr(0, part.find(' ')));
    return {};
}

bool HasWord(std::string_view text, std::string_view word) {
    const std::vector<std::string_view> words = Split(text, ' ');
    return std::find(words.begin(), words.end(), word) != words.end();
}

// The version of the ARM architecture: "8" or "AArch64" are the first with 64 bits, "5TEJ" is older.
bool IsArm64(const std::string& text) {
    return text == "AArch64" || ParseNumber<unsigned>(text.substr(0, text.find_first_not_of("0123456789"))) >= 8u;
}

/// A field that tells whether registers have 64 bits. "lm" is x86's flag of long mode, "zarch" that of s390.
struct TWidthField {
    std::string_view name;
    bool (*isWide)(const std::string& text);
};

constexpr TWidthField kWidthFields[] = {
    {"flags", [](const std::string& text) { return HasWord(text, "lm"); }},
    {"CPU architecture", IsArm64},
    {"isa", [](const std::string& text) { return text.find("64") != std::string::npos; }},
    {"ISA", [](const std::string& text) { return text.find("64") != std::string::npos; }},
    {"features", [](const std::string& text) { return HasWord(text, "zarch"); }},
};

TFact<uint16_t> DataWidthOf(const TCpuInfo& info, uint32_t thread) {
    for (const TWidthField& field : kWidthFields)
        if (const TFact<std::string> text = info.FieldOrCommon(thread, {field.name}))
            return text.Map(
                [&](const std::string& words) { return std::optional<uint16_t>(field.isWide(words) ? 64 : 32); });
    return info.Field(thread, {"flags"}).Map([](const std::string&) { return std::optional<uint16_t>(); });
}

/// Numbers and names that identify a model.
struct TModel {
    TFact<std::string> name, manufacturer, family, number, stepping;
};

// "0x41"
std::optional<uint32_t> ParseHex(const TFact<std::string>& text) {
    return text ? ParseNumber<uint32_t>(*text, 16) : std::nullopt;
}

TFact<std::string> Named(const char* name, const TFact<std::string>& number) {
    return name == nullptr ? number : TFact<std::string>::Of(name, number.source);
}

// "r0p3": variant and revision, as ARM writes it.
TFact<std::string> ArmRevision(const TCpuInfo& info, uint32_t thread) {
    const std::optional<uint32_t> variant = ParseHex(info.FieldOrCommon(thread, {"CPU variant"}));
    return info.FieldOrCommon(thread, {"CPU revision"}).Map([&](const std::string& revision) {
        return std::optional(variant ? 'r' + std::to_string(*variant) + 'p' + revision : revision);
    });
}

// Numbers of maker and model in place of names.
TModel ArmModelOf(const TCpuInfo& info, uint32_t thread, const TFact<std::string>& implementer) {
    const TFact<std::string> part = info.FieldOrCommon(thread, {"CPU part"});
    const std::optional<uint32_t> maker = ParseHex(implementer), model = ParseHex(part);
    const char* const name = maker && model ? FindArmModel(*maker, *model) : nullptr;
    const TFact<std::string> written = info.FieldOrCommon(thread, {"model name", "Processor"});
    return {name == nullptr ? written : Named(name, part), Named(maker ? FindArmMaker(*maker) : nullptr, implementer),
            info.FieldOrCommon(thread, {"CPU architecture"}), part, ArmRevision(info, thread)};
}

// "version = FF,  identification = 0133E8,  machine = 3906" in lines such as "processor 0"; newer kernels also have a
// block for each thread.
TFact<std::string> MachineTypeOf(const TCpuInfo& info, uint32_t thread) {
    constexpr std::string_view kWord = "machine = ";
    const TFact<std::string> type = info.Field(thread, {"machine"});
    TFact<std::string> line = info.CommonField({"processor " + std::to_string(thread)});
    if (type || !line) return type;
    const size_t at = line->find(kWord);
    if (at == std::string::npos) return type;
    line.value = Trim(std::string_view(*line).substr(at + kWord.size()));
    return line;
}

// The field "model" outside of a thread's block is that of the machine.
TModel ModelOf(const TCpuInfo& info, uint32_t thread) {
    if (const TFact<std::string> implementer = info.FieldOrCommon(thread, {"CPU implementer"}))
        return ArmModelOf(info, thread, implementer);
    const TFact<std::string> number = info.Field(thread, {"model"});
    return {info.FieldOrCommon(thread, {"model name", "Model Name", "cpu model", "uarch", "cpu"}),
            info.FieldOrCommon(thread, {"vendor_id", "vendor"}),
            info.Field(thread, {"cpu family", "CPU Family", "family"}), number ? number : MachineTypeOf(info, thread),
            info.Field(thread, {"stepping", "CPU Revision", "revision"})};
}

bool IsSameModel(const TModel& a, const TModel& b) {
    return a.name.value == b.name.value && a.number.value == b.number.value && a.stepping.value == b.stepping.value;
}

void SetModel(const TModel& model, TPackage& package) {
    package.modelName = model.name;
    package.manufacturer = model.manufacturer;
    package.family = model.family;
    package.model = model.number;
    package.stepping = model.stepping;
}

void AppendText(const TFact<std::string>& other, TFact<std::string>& text) {
    if (other) text.value = text ? *text + " + " + *other : *other;
}

// "Cortex-A53 + Cortex-A72"
void AddModel(const TModel& model, TPackage& package) {
    AppendText(model.name, package.modelName);
    AppendText(model.number, package.model);
    AppendText(model.stepping, package.stepping);
}

using TModels = std::vector<TModel>;

bool Contains(const TModels& models, const TModel& model) {
    return std::any_of(models.begin(), models.end(), [&](const TModel& other) { return IsSameModel(model, other); });
}

}  // namespace

void DescribePackage(const TCpuInfo& info, uint32_t thread, TPackage& package) {
    const TFact<std::string> addresses = info.Field(thread, {"address sizes", "Address Sizes"});
    SetModel(ModelOf(info, thread), package);
    package.microcode = info.Field(thread, {"microcode"});
    package.bogoMips = info.FieldOrCommon(thread, {"bogomips", "BogoMIPS", "bogomips per cpu"}).Map(ParseReal);
    package.flags = info.FieldOrCommon(thread, {"flags", "Features", "features", "isa"}).Map(ParseWords);
    package.bugs = info.Field(thread, {"bugs"}).Map(ParseWords);
    package.dataWidth = DataWidthOf(info, thread);
    package.physicalAddressWidth =
        addresses.Map([](const std::string& text) { return ParseAddressWidth(text, "physical"); });
    package.virtualAddressWidth =
        addresses.Map([](const std::string& text) { return ParseAddressWidth(text, "virtual"); });
}

// Only ARM has such packages.
void DescribeMixedCores(const TCpuInfo& info, TProcessorFacts& facts) {
    constexpr size_t kMostModels = 16;  // no machine has as many
    std::vector<TModels> modelsOf(facts.packages.size());
    std::vector<TModel> ofCores;
    for (const TCore& core : facts.cores) {
        if (!info.Field(core.threads.front(), {"CPU part"})) return;
        ofCores.push_back(ModelOf(info, core.threads.front()));
        TModels& models = modelsOf[core.package];
        if (models.size() == kMostModels || Contains(models, ofCores.back())) continue;
        if (!models.empty()) AddModel(ofCores.back(), facts.packages[core.package]);
        models.push_back(ofCores.back());
    }
    for (size_t i = 0; i < facts.cores.size(); ++i)
        if (modelsOf[facts.cores[i].package].size() > 1) facts.cores[i].modelName = ofCores[i].name;
}

TFact<uint32_t> ClockOf(const TCpuInfo& info, uint32_t thread) {
    return info.Field(thread, {"cpu MHz", "CPU MHz", "cpu MHz dynamic", "clock"}).Map(ParseMegahertz);
}
