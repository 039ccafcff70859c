#include "Fact.h"

#include <cerrno>

EAbsence AbsenceOf(int error) {
    switch (error) {
        case ENOENT:
        case ENOTDIR:
        case ENODEV:
        case ENXIO:
            return EAbsence::eNotPresent;
        case EACCES:
        case EPERM:
            return EAbsence::eNoPermission;
        case EINVAL:  // returned by drivers that do not have the value
        case ENODATA:
        case ENOSYS:
        case EOPNOTSUPP:
            return EAbsence::eNotSupported;
        default:
            return EAbsence::eReadError;
    }
}

const char* AbsenceText(EAbsence absence) {
    switch (absence) {
        case EAbsence::eNotPresent:
            return "not present";
        case EAbsence::eNoPermission:
            return "no permission";
        case EAbsence::eNotSupported:
            return "not supported";
        case EAbsence::eNotReported:
            return "not reported";
        case EAbsence::eReadError:
            break;
    }
    return "read error";
}
