#include "kyr/TLogger.h"

#include <cerrno>

#include "kyr/TOSSpecific.h"
#include "kyr/TRootObject.h"
#include "support/TestSupport.h"
#include "unit/FakePlugin.h"

namespace {

constexpr const char* kOpened = "-- ORQ Log Opened ----------------------------\n";
constexpr const char* kClosed = "-- ORQ Log Closed ----------------------------\n";

using TLines = std::vector<std::string>;

kyrLogSeverity Severity(int number) { return static_cast<kyrLogSeverity>(number); }

class TLoggerTest : public ::testing::Test {
protected:
    TLoggerTest() { Open(); }

    void Open() {
        fLogger.reset();
        fLogger = std::make_unique<TLogger>();
        fLogger->SetLogFilename(fFile);
    }

    /// Logs to a new file at the case's threshold, and looks at what came of it.
    template <typename TCase, typename TAction>
    void ExpectOutcome(const TCase& c, TAction log) {
        SCOPED_TRACE(std::to_string(c.severity) + " at " + std::to_string(c.threshold));
        Open();
        fLogger->SetLogThreshold(Severity(c.threshold));
        EXPECT_EQ(StatusOf(log), c.status);
        TLines kept;
        for (const ILogger::TLogEntry& entry : fLogger->GetLog()) kept.push_back(entry.text);
        EXPECT_EQ(kept, c.kept);
        EXPECT_EQ(ReadFile(fFile), std::string(kOpened) + c.printed);
    }

    TempFolder fFolder;
    FakePlugin fPlugin{"fake"};
    std::string fFile = fFolder.Path() + "/log";
    std::unique_ptr<TLogger> fLogger;
};

TEST_F(TLoggerTest, SeverityAndThresholdDecideWhatIsKeptAndPrinted) {
    const TLines kept = {"text"}, nothing = {};
    const struct {
        int severity;
        int threshold;
        TLines kept;
        const char* printed;
        kyrStatusCode status;
    } cases[] = {
        {0, 2, kept, "KYR_Core: [Error] text\n", kyrStatusOK},
        {1, 2, kept, "KYR_Core: [Warning] text\n", kyrStatusOK},
        {2, 2, kept, "KYR_Core: [Status] text\n", kyrStatusOK},
        {3, 2, nothing, "", kyrStatusOK},
        {4, 2, nothing, "", kyrStatusOK},
        {3, 4, kept, "KYR_Core: [Debug] text\n", kyrStatusOK},
        {4, 4, nothing, "KYR_Core: [Verbose] text\n", kyrStatusOK},
        {0, -1, nothing, "", kyrStatusOK},
        {100, 0, kept, "", kyrStatusOK},
        {100, 100, kept, "", kyrStatusOK},
        {7, 10, nothing, "", kyrStatusFail},
        {-1, 2, kept, "", kyrStatusFail},
        {-1, -2, nothing, "", kyrStatusOK},
    };
    for (const auto& c : cases)
        ExpectOutcome(c, [&] { fLogger->OutputLogEntry(nullptr, Severity(c.severity), "text"); });
}

TEST_F(TLoggerTest, DataIsDumpedAndObeysRulesOfItsOwn) {
    const unsigned char data[10241] = {0, 255, 0x1a};
    const std::string tooMuch = "Too much data to log--10k limit!";
    const struct {
        int severity;
        int threshold;
        int length;
        TLines kept;
        std::string printed;
        kyrStatusCode status;
    } cases[] = {
        {2, 2, 3, {"00 ff 1a "}, "KYR_fake: [Status] 00 ff 1a \n", kyrStatusOK},
        {0, 2, 0, {""}, "KYR_fake: [Error] \n", kyrStatusOK},
        {0, 2, -5, {""}, "KYR_fake: [Error] \n", kyrStatusOK},
        {4, 4, 1, {}, "KYR_fake: [Verbose] 00 \n", kyrStatusOK},
        {3, 2, 1, {}, "", kyrStatusOK},
        {100, 100, 1, {}, "", kyrStatusOK},
        {-1, 2, 1, {"00 "}, "", kyrStatusFail},
        {4, 2, 10241, {tooMuch}, "KYR_Core: [Error] " + tooMuch + "\n", kyrStatusOK},
        {-2, -1, 10241, {}, "", kyrStatusOK},
    };
    for (const auto& c : cases)
        ExpectOutcome(c, [&] { fLogger->OutputLogEntry(&fPlugin, Severity(c.severity), data, c.length); });
    fLogger->SetLogThreshold(kyrLogStatus);
    fLogger->OutputLogEntry(nullptr, kyrLogError, data, 10240);
    EXPECT_EQ(fLogger->GetLog().back().text.size(), 3 * 10240u);
}

TEST_F(TLoggerTest, TheEntryHoldsWhoSaidWhatAndWhen) {
    int asked = 0;
    fPlugin.fWhenAsked = [&] { ++asked; };
    const TCIMDateTime before = TOSSpecific::GetLocalTime();
    fLogger->OutputLogEntry(&fPlugin, kyrLogMemoryOnly, "kept only");
    fLogger->OutputLogEntry(&fPlugin, kyrLogDebug, "below the threshold");
    EXPECT_EQ(asked, 0);  // the name is for printed lines alone
    const ILogger::TLogEntry entry = fLogger->GetLog().front();
    EXPECT_EQ(entry.plugin, &fPlugin);
    EXPECT_EQ(entry.severity, kyrLogMemoryOnly);
    EXPECT_FALSE(entry.time < before);
    EXPECT_FALSE(TOSSpecific::GetLocalTime() < entry.time);
}

TEST_F(TLoggerTest, ANewLoggerBeginsTheFileAnewAndEndsIt) {
    fLogger->OutputLogEntry(nullptr, kyrLogError, "old");
    Open();
    fLogger.reset();
    EXPECT_EQ(ReadFile(fFile), std::string(kOpened) + kClosed);
}

TEST_F(TLoggerTest, AFileThatCannotBeOpenedIsRefusedByItsReason) {
    TLogger logger;
    EXPECT_EQ(StatusOf([&] { logger.SetLogFilename(fFolder.Path()); }), kyrStatusFileSystemError);
    EXPECT_EQ(StatusOf([&] { logger.SetLogFilename("/proc/sys/kernel/osrelease"); }), kyrStatusAccessDenied);
    logger.OutputLogEntry(nullptr, kyrLogError, "kept, printed nowhere");
    EXPECT_EQ(logger.GetLog().size(), 1u);
    logger.SetLogFilename(fFile + "2");  // the first ones never opened
    EXPECT_EQ(ReadFile(fFile + "2"), kOpened);
}

TEST_F(TLoggerTest, ASecondFileEndsTheWriting) {
    errno = 0;
    EXPECT_EQ(StatusOf([&] { fLogger->SetLogFilename(fFile + "2"); }), kyrStatusFileSystemError);
    fLogger->OutputLogEntry(nullptr, kyrLogError, "lost");
    fLogger.reset();
    EXPECT_EQ(ReadFile(fFile), kOpened);
}

TEST(TLoggerInstanceTest, TheOneLoggerIsReachedThroughTheRoot) {
    delete TRootObject::GetCoreLogger();
    EXPECT_EQ(TRootObject::GetCoreLogger(), nullptr);
    EXPECT_EQ(TLogger::Initialize(), 0);
    EXPECT_EQ(TRootObject::GetCoreLogger(), TLogger::GetInstance());
    EXPECT_EQ(TLogger::GetInstance()->GetLogThreshold(), kyrLogStatus);
}

}  // namespace
