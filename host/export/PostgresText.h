#ifndef KYR_HOST_EXPORT_POSTGRESTEXT_H
#define KYR_HOST_EXPORT_POSTGRESTEXT_H

#include <string>
#include <string_view>

#include "export/RunSink.h"
#include "export/Tables.h"

/// The name of the type of a column in PostgreSQL, as its catalogue spells it.
std::string PostgresType(const TColumn& column);

/// One line of COPY in text form. Fields are separated by tabs; a missing one is \N.
class TCopyLine {
public:
    explicit TCopyLine(std::string& block) : fBlock(block) {}

    TCopyLine& Null();
    TCopyLine& Integer(int64_t number);
    TCopyLine& Text(std::string_view text);
    /// Null if it is empty.
    TCopyLine& TextOrNull(std::string_view text);
    /// A cell that is no reference.
    TCopyLine& Cell(const TCell& cell, EColumn kind);
    void End() { fBlock += '\n'; }

private:
    TCopyLine& Plain(std::string_view text);

    std::string& fBlock;
    bool fIsFirst = true;
};

/// What stands in front of the data and behind it. The load is what the data base does with them.
extern const char kPostgresStart[];
extern const char kPostgresLoad[];

#endif
