#ifndef SCHEMABUILDER_H
#define SCHEMABUILDER_H

#include <boost/weak_ptr.hpp>

#include "support/SchemaSketch.h"
#include "support/TestSupport.h"

/// The fixture of tests on a schema: a log, a container and a builder.
class SchemaTest : public LoggedTest {
protected:
    TContainer fContainer;
    SchemaBuilder fSchema{fContainer};
};

/// Expires when the object is destroyed.
template <typename THandle>
auto Watch(const THandle& handle) {
    return boost::weak_ptr<typename decltype(handle.GetBody())::element_type>(handle.GetBody());
}

template <typename THandle>
CIM::ECIMType TypeOf(const THandle& handle) {
    return handle.GetType();
}

inline std::string TextOf(const TCIMValue& value) { return value.IsNull() ? "NULL" : value.ToString(10); }

/// The names of classes, declarations, qualifiers or properties.
template <typename TPointers>
std::vector<std::string> NamesOf(const TPointers& objects) {
    std::vector<std::string> names;
    for (const auto* object : objects) names.push_back(object->GetName());
    return names;
}

inline std::vector<std::string> PathsOf(const std::vector<TCIMInstance*>& instances) {
    std::vector<std::string> paths;
    for (const TCIMInstance* instance : instances) paths.push_back(instance->BuildPath().GetPath());
    return paths;
}

#endif
