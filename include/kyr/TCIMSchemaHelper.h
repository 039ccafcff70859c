#ifndef TCIMSCHEMAHELPER_H
#define TCIMSCHEMAHELPER_H

#include <string>

#include "kyr/kyrExport.h"

class TContainer;

/// What a report asks about the machine, read from the instances that a collection left in a container:
/// MOLTA_ComputerSystem, MOLTA_OperatingSystem, MOLTA_SystemBIOSElement and MOLTA_ORQProduct.
class KYR_API TCIMSchemaHelper {
public:
    static const std::string kSystemCreationClassName;           ///< "MOLTA_ComputerSystem"
    static const std::string kOperatingSystemCreationClassName;  ///< "MOLTA_OperatingSystem"

    /// The constants above; the container is not looked at.
    static std::string GetSystemCreationClassName(TContainer* container);
    static std::string GetOperatingSystemCreationClassName(TContainer* container);

    /// One property of the one instance of a class: Name and ProductName of the computer system, Name, Version and
    /// OSType of the operating system, Version of the product. kyrStatusNotFound unless there is exactly one instance
    /// with that property, kyrStatusValueIsNULL, kyrStatusTypeMismatch.
    static std::string GetSystemName(TContainer* container);
    static std::string GetSystemProductName(TContainer* container);
    static std::string GetOperatingSystemName(TContainer* container);
    static std::string GetOperatingSystemVersion(TContainer* container);
    static unsigned short GetOperatingSystemType(TContainer* container);
    static std::string GetDataSourceVersion(TContainer* container);

    /// The first four characters are letters or digits.
    static bool IsValidMachineType(const std::string& text);
    /// A machine type, then three characters that are letters, digits or blanks.
    static bool IsValidMTM(const std::string& text);

    /// Where the machine type and model comes from: MachineTypeModel of the BIOS element, else ProductName of the
    /// computer system. kyrStatusNotFound, with the reason in the log at kyrLogDebug.
    static std::string GetRawMTMString(TContainer* container);
    /// Machine type and model, seven characters, "xxx" for an unknown model. kyrStatusNotFound as above,
    /// kyrStatusInvalidFormat where the raw text has none.
    static std::string GetMTM(TContainer* container);
    /// The first four characters of it.
    static std::string GetMachineType(TContainer* container);
    /// The three behind.
    static std::string GetModelNumber(TContainer* container);

    /// SerialNumber of the computer system. kyrStatusNotFound, with the reason in the log at kyrLogDebug.
    static std::string GetRawSerialNumberString(TContainer* container);
    /// The same without trailing blanks: seven letters and digits, or kyrStatusInvalidFormat.
    static std::string GetSerialNumber(TContainer* container);

    /// Parts of the collecting tool's version. kyrStatusNotFound for a version without a dot. The minor part is right
    /// only where it is one character longer than the major part: hosts depend on the text that comes out.
    static std::string GetDataSourceMajorVersion(TContainer* container);
    static std::string GetDataSourceMinorVersion(TContainer* container);
    static std::string GetDataSourceBuildVersion(TContainer* container);
};

#endif
