#ifndef KYR_HOST_MODEL_DATEFAULTS_H
#define KYR_HOST_MODEL_DATEFAULTS_H

#include <string>
#include <vector>

class TCIMClass;
class TCIMDateTime;

/// The part of a timestamp that no calendar and no clock has, such as "month 13"; empty if there is none. The core
/// takes the numbers as they come.
std::string DateFaultOf(const TCIMDateTime& date);

/// A property of which instances have timestamps that no calendar has.
struct TDateFault {
    std::string property;
    std::string text;  ///< ""20241301000000.000000+000" is no date that exists: month 13", of the first one
    std::string path;  ///< the instance that it is in
    size_t count;      ///< of the instances
};

/// The properties of the class that have them.
std::vector<TDateFault> FindDateFaults(const TCIMClass& cls);

#endif
