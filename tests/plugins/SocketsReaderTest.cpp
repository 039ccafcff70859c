#include <filesystem>

#include "SocketFacts.h"
#include "SocketTables.h"
#include "support/TestSupport.h"

namespace fs = std::filesystem;

namespace {

using TTexts = std::vector<std::string>;

const TInetTable& TableOf(const std::string& source) {
    for (const TInetTable& table : InetTables())
        if (source == table.source) return table;
    throw std::out_of_range(source);
}

TTexts NamesOf(const std::vector<TInetEntry>& entries) {
    TTexts names;
    for (const TInetEntry& entry : entries) names.push_back(entry.address + " " + std::to_string(entry.port));
    return names;
}

/// A machine of a few files, below a folder of its own.
class TMachine : public TempFolder {
public:
    void AddProcess(int id, const std::string& name, const std::string& group, const TTexts& descriptors) const {
        const std::string folder = "proc/" + std::to_string(id);
        Write(folder + "/comm", name + "\n");
        Write(folder + "/cgroup", group);
        fs::create_directories(Path() + "/" + folder + "/fd");
        for (size_t i = 0; i < descriptors.size(); ++i)
            fs::create_symlink(descriptors[i], Path() + "/" + folder + "/fd/" + std::to_string(i));
    }
    TSocketFacts Read() const { return ReadSockets(TSystemRoot(Path())); }
};

constexpr const char* kHeader =
    "  sl  local_address rem_address   st tx rx tr tm->when retrnsmt   uid  timeout inode\n";
constexpr const char* kListening = " 0: 00000000:0016 00000000:0000 0A 0:0 00:0 0 7 0 101 1 0 100 0 0 10 0\n";

}  // namespace

TEST(SocketsReaderTest, LinesOfProcAreReadOrLeftOut) {
    const struct {
        const char* table;
        const char* line;
        TTexts names;
    } cases[] = {
        {"sock_diag tcp", kListening, {"0.0.0.0 22"}},
        {"sock_diag tcp", " 1: 0100007F:1538 00000000:0000 0A 0:0 00:0 0 114 0 102", {"127.0.0.1 5432"}},
        {"sock_diag tcp", " 2: 0100007F:1538 0200007F:9000 01 0:0 00:0 0 114 0 103", {}},
        {"sock_diag udp", " 3: 00000000:0044 00000000:0000 07 0:0 00:0 0 0 0 104", {"0.0.0.0 68"}},
        {"sock_diag udp", " 4: 00000000:0044 0100007F:0035 01 0:0 00:0 0 0 0 105", {}},
        {"sock_diag tcp6",
         " 5: 000080FE00000000FF5B2A1C010000FE:0050 00000000000000000000000000000000:0000 0A 0:0 00:0 0 0 0 106",
         {"fe80::1c2a:5bff:fe00:1 80"}},
        {"sock_diag tcp6", kListening, {}},
        {"sock_diag tcp", " 6: 0100007F 00000000:0000 0A 0:0 00:0 0 0 0 1", {}},
        {"sock_diag tcp", " 7: 0100007:0016 00000000:0000 0A 0:0 00:0 0 0 0 1", {}},
        {"sock_diag tcp", " 8: 0100007F:10016 00000000:0000 0A 0:0 00:0 0 0 0 1", {}},
        {"sock_diag tcp", " 9: 0100007F:0016 00000000:0000 0A", {}},
    };
    for (const auto& each : cases)
        EXPECT_EQ(NamesOf(ParseInetFile(each.line, TableOf(each.table))), each.names) << each.line;
    const std::string sctp =
        " ENDPT SOCK STY SST HBKT LPORT UID INODE LADDRS\nf0 f1 2 10 29 5000 33 3011 192.0.2.7 198.51.100.7\n"
        "f2 f3 2 7 30 5001 33 3012 192.0.2.7\nf4 f5 0 10 31 5002 33 3013 2001:db8::7\n";
    EXPECT_EQ(NamesOf(ParseSctpFile(sctp, TableOf("sock_diag sctp"))), TTexts{"192.0.2.7 5000"});
    EXPECT_EQ(NamesOf(ParseSctpFile(sctp, TableOf("sock_diag sctp6"))), TTexts{"2001:db8::7 5002"});
}

TEST(SocketsReaderTest, ProcessesAreThoseThatHaveASocketOpen) {
    const TMachine machine;
    machine.Write("proc/net/tcp", std::string(kHeader) + kListening +
                                      " 1: 00000000:0016 00000000:0000 0A 0:0 00:0 0 7 0 102\n"
                                      " 2: 00000000:0017 00000000:0000 0A 0:0 00:0 0 8 0 103\n");
    machine.Write("etc/passwd", "broken\nanother:x:70:1\nlp:x:7:7:lp:/:/bin/false\nlp2:x:7:7::/:\n");
    machine.Write("etc/services", "# 22/tcp\nssh-udp 22/udp\nssh 22/tcp alias#\ntelnet\t23/tcp\n");
    machine.AddProcess(10, "two", "0::/a.slice/two.service\n", {"socket:[101]", "socket:[102]", "socket:[101]"});
    machine.AddProcess(9, "one", "0::/init.scope\n", {"/dev/null", "socket:[102]", "pipe:[103]", "socket:[1030]"});
    const TSocketFacts facts = machine.Read();
    ASSERT_EQ(facts.sockets.size(), 2u);
    const TListeningSocket &ssh = facts.sockets[0], &telnet = facts.sockets[1];
    EXPECT_EQ(NameOf(ssh), "tcp 0.0.0.0:22");
    EXPECT_EQ(ssh.count, 2u);
    EXPECT_EQ(*ssh.processIds, (std::vector<uint32_t>{9, 10}));
    EXPECT_EQ(*ssh.processNames, (TTexts{"one", "two"}));
    EXPECT_EQ(*ssh.unit, "two.service");
    EXPECT_EQ(*ssh.ownerName, "lp");
    EXPECT_EQ(*ssh.portName, "ssh");
    EXPECT_EQ(telnet.processIds.absence, EAbsence::eNotPresent);
    EXPECT_EQ(telnet.ownerName.absence, EAbsence::eNotPresent);
    machine.Write("proc/8/fd", "");  // as scripts/record marks what it may not look at
    EXPECT_EQ(machine.Read().sockets[1].processIds.absence, EAbsence::eNoPermission);
    EXPECT_TRUE(machine.Read().sockets[0].processIds);
}

TEST(SocketsReaderTest, ListIsCompleteOnlyIfAllTablesWereThere) {
    const struct {
        TTexts files;
        bool isComplete;
        const char* source;
    } cases[] = {
        {{}, false, "/proc/net/tcp"},
        {{"proc/net/tcp"}, false, "/proc/net/udp"},
        {{"proc/net/tcp", "proc/net/udp"}, true, ""},  // a kernel without IPv6
        {{"proc/net/tcp", "proc/net/udp", "proc/net/if_inet6"}, false, "/proc/net/tcp6"},
        {{"proc/net/tcp", "proc/net/udp", "proc/net/sctp/other"}, false, "/proc/net/sctp/eps"},
        {{"proc/net/tcp", "proc/net/udp", "sys/module/dccp/refcnt"}, false, "/proc/net/dccp"},
    };
    for (const auto& each : cases) {
        const TMachine machine;
        for (const std::string& file : each.files) machine.Write(file, kHeader);
        const TListing listing = machine.Read().listing;
        EXPECT_EQ(bool(listing), each.isComplete) << each.source;
        if (!each.isComplete) {
            EXPECT_EQ(listing.source, each.source);
        }
    }
}

TEST(SocketsReaderTest, ThoseThatListenAreFoundInFrontOfManyConnections) {
    const TMachine machine;
    std::string table = std::string(kHeader) + kListening;
    for (int i = 0; i < 20000; ++i)
        table += " 1: 0100007F:1538 0200007F:9000 01 0:0 00:0 0 114 0 103 1 0 20 4 30 10 -1\n";
    machine.Write("proc/net/tcp", table);
    machine.Write("proc/net/udp", kHeader);
    EXPECT_EQ(machine.Read().sockets.size(), 1u);
    EXPECT_TRUE(machine.Read().listing);
}
