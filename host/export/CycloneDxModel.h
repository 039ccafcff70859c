#ifndef KYR_HOST_EXPORT_CYCLONEDXMODEL_H
#define KYR_HOST_EXPORT_CYCLONEDXMODEL_H

#include <map>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "export/CycloneDx.h"
#include "model/Provenance.h"

class TCIMInstance;
class TContainer;

// A bill of materials in memory, in the terms of CycloneDX. All texts are valid UTF-8; empty ones are not written.

struct TBomProperty {
    std::string name;
    std::string value;
};

struct TBomComponent {
    const char* type;
    std::string ref;  ///< unique in the document
    std::string name;
    std::string version = {};
    std::string description = {};
    std::string supplier = {};
    std::string email = {};  ///< of the supplier
    std::string purl = {};
    std::vector<TBomProperty> properties = {};
};

/// How completely the document tells what a component depends on.
struct TBomComposition {
    const char* aggregate;
    std::string ref;
};

/// The references of the machine and of its operating system.
constexpr const char* kMachineRef = "machine";
constexpr const char* kSystemRef = "os";

/// The document. What it is made of is added in the order in which it is to be written.
class TBom {
public:
    std::string fTimestamp;
    std::string fMachineKey;  ///< what the serial number depends on besides; not written
    TBomComponent fMachine = {"device", kMachineRef, ""};
    std::vector<TBomProperty> fProperties;  ///< of the document
    std::vector<TBomComponent> fComponents;
    std::map<std::string, std::set<std::string>> fDependencies;  ///< from a reference to what it depends on
    std::vector<TBomComposition> fCompositions;

    /// Adds a component, which may stand for an instance. If another one has its reference, that of the new one is made
    /// unique. Returns the reference.
    std::string Add(TBomComponent component, const TCIMInstance* instance = nullptr);
    void AddDependency(const std::string& dependent, const std::string& antecedent);

    /// The reference of the component that stands for the instance; empty if there is none.
    std::string RefOf(const TCIMInstance* instance) const;
    bool HasRef(const std::string& ref) const { return fRefs.count(ref) != 0; }

private:
    std::unordered_set<std::string> fRefs = {kMachineRef};
    std::unordered_map<const TCIMInstance*, std::string> fInstances;
};

/// The values of an instance as a bill of materials may tell them.
class TBomValues {
public:
    /// Without identifiers, those of the instance and hardware addresses are hidden within the texts.
    TBomValues(const TCIMInstance& instance, bool identifiers);

    /// The value as visible text. Empty if there is none, or one that only stands in for a key that could not be read.
    std::string Get(const char* property) const;
    /// The same; empty also for a text that nobody filled in.
    std::string GetFilled(const char* property) const;
    /// The first of them that is not empty.
    std::string FirstOf(const std::vector<const char*>& properties) const;
    std::string FirstFilled(const std::vector<const char*>& properties) const;

private:
    const TCIMInstance& fInstance;
    TProvenance fProvenance;
    bool fIdentifiers;
    std::vector<std::string> fHidden;
};

// The parts of a document. Each adds what it finds in the container.

/// The operating system and its packages.
void AddSoftware(const TContainer& container, const TCycloneDxOptions& options, TBom& bom);
/// The machine itself, its devices and their firmware.
void AddHardware(const TContainer& container, const TCycloneDxOptions& options, TBom& bom);
/// How complete all that is. Called last.
void AddCompleteness(const TContainer& container, TBom& bom);

/// The classes of devices and firmware.
std::vector<std::string> HardwareClasses();
/// The associations from which it is taken what devices depend on.
std::vector<std::string> HardwareAssociations();

constexpr const char* kPackageClass = "MOLTA_Package";
constexpr const char* kLanguagePackageClass = "MOLTA_LanguagePackage";
constexpr const char* kOperatingSystemClass = "MOLTA_OperatingSystem";
/// How far a package is installed, in the numbers of PackageStatus: what is in between may have files on the machine.
enum class EInstalled { eNo, eInPart, eYes };
EInstalled HowInstalled(const TCIMInstance& package);

/// Writes the document, with a serial number that follows from all of it and from what the machine is known by.
void WriteBom(const TBom& bom, TOutput& output);

#endif
