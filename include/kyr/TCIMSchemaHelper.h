#ifndef TCIMSCHEMAHELPER_H
#define TCIMSCHEMAHELPER_H

#include <string>

#include "kyr/kyrExport.h"

class TContainer;

/// What a report asks about the machine, read from the instances that a collection left in a container:
/// MOLTA_ComputerSystem, MOLTA_OperatingSystem, MOLTA_SystemBIOSElement and MOLTA_ORQProduct. Instances of their
/// subclasses count too. Nothing is cached: each call reads the container on the calling thread, and changes nothing.
class KYR_API TCIMSchemaHelper {
public:
    static const std::string kSystemCreationClassName;           ///< "MOLTA_ComputerSystem"
    static const std::string kOperatingSystemCreationClassName;  ///< "MOLTA_OperatingSystem"

    /// @{
    /// The constants above; the container is not looked at.
    static std::string GetSystemCreationClassName(TContainer* container);
    static std::string GetOperatingSystemCreationClassName(TContainer* container);
    /// @}

    /// @{
    /// One property of the one instance of a class: Name and ProductName of the computer system, Name, Version and
    /// OSType of the operating system, Version of the product. kyrStatusNotFound unless there is exactly one instance
    /// with that property, kyrStatusValueIsNULL, kyrStatusTypeMismatch. None of these is logged.
    static std::string GetSystemName(TContainer* container);
    static std::string GetSystemProductName(TContainer* container);
    static std::string GetOperatingSystemName(TContainer* container);
    static std::string GetOperatingSystemVersion(TContainer* container);
    static unsigned short GetOperatingSystemType(TContainer* container);
    static std::string GetDataSourceVersion(TContainer* container);
    /// @}

    /// The first four characters are letters or digits; what follows does not count.
    static bool IsValidMachineType(const std::string& text);
    /// A machine type, then three characters that are letters, digits or blanks; what follows does not count.
    static bool IsValidMTM(const std::string& text);

    /// Where the machine type and model comes from: MachineTypeModel of the first BIOS element, else, if there is none
    /// or it is NULL, ProductName of the computer system. kyrStatusNotFound, with the reason in the log at kyrLogDebug:
    /// "TCIMSchemaHelper: no computer system" and the like. A MachineTypeModel that is no string raises
    /// kyrStatusTypeMismatch.
    static std::string GetRawMTMString(TContainer* container);
    /// Machine type and model, seven characters, "xxx" for an unknown model. The raw text is one of a few product names
    /// that are known as they stand, the seven characters themselves, or a name that holds them, or the type's four,
    /// as "-[...]-". kyrStatusNotFound as above, kyrStatusInvalidFormat, which is not logged, for any other text. Two
    /// exceptions that hosts rely on stand in docs/oddities.md.
    static std::string GetMTM(TContainer* container);
    /// The first four characters of GetMTM. Raises as GetMTM does.
    static std::string GetMachineType(TContainer* container);
    /// The three behind.
    static std::string GetModelNumber(TContainer* container);

    /// SerialNumber of the computer system; the BIOS element plays no part. kyrStatusNotFound, also for NULL and for
    /// what is no string, with the reason in the log at kyrLogDebug.
    static std::string GetRawSerialNumberString(TContainer* container);
    /// The same without trailing blanks: seven letters and digits, or kyrStatusInvalidFormat, which is not logged. Many
    /// makers number in another form: fall back on the raw text where any serial number will do.
    static std::string GetSerialNumber(TContainer* container);

    /// What stands in front of the first dot of the collecting tool's version. All three raise kyrStatusNotFound for a
    /// version without a dot, and as GetDataSourceVersion.
    static std::string GetDataSourceMajorVersion(TContainer* container);
    /// What stands behind the first dot, cut to one character more than the major part has: "23" of "1.23.456", and
    /// "34." of "12.34.56". Hosts depend on the text that comes out.
    static std::string GetDataSourceMinorVersion(TContainer* container);
    /// What stands behind the last dot.
    static std::string GetDataSourceBuildVersion(TContainer* container);
};

#endif
