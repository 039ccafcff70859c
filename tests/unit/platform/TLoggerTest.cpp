#include "kyr/TLogger.h"

#include <cerrno>

#include "kyr/TOSSpecific.h"
#include "kyr/TRootObject.h"
#include "support/TestSupport.h"
#include "unit/FakePlugin.h"

namespace {

constexpr const char* kOpened = "-- ORQ Log Opened ----------------------------\n";
constexpr const char* kClosed = "-- ORQ Log Closed ----------------------------\n";

kyrLogSeverity Severity(int number) { return static_cast<kyrLogSeverity>(number); }

class TLoggerTest : public ::testing::Test {
protected:
    TLoggerTest() { Open(); }

    void Open() {
        fLogger.reset();
        fLogger = std::make_unique<TLogger>();
        fLogger->SetLogFilename(fFile);
    }

    /// What comes of logging to a new file: the entries that are kept, in parentheses, what is printed and the status
    /// of a failure.
    template <typename TAction>
    std::string Outcome(int threshold, TAction log) {
        Open();
        fLogger->SetLogThreshold(Severity(threshold));
        const kyrStatusCode status = StatusOf(log);
        std::string outcome;
        for (const ILogger::TLogEntry& entry : fLogger->GetLog()) outcome += "(" + entry.text + ")";
        outcome += ReadFile(fFile).substr(std::string(kOpened).size());
        return status == kyrStatusOK ? outcome : outcome + kyrTranslateStatusCode(status);
    }

    TempFolder fFolder;
    FakePlugin fPlugin{"fake"};
    std::string fFile = fFolder.Path() + "/log";
    std::unique_ptr<TLogger> fLogger;
};

TEST_F(TLoggerTest, SeverityAndThresholdDecideWhatIsKeptAndPrinted) {
    // clang-format off
    const std::tuple<int, int, const char*> cases[] = {
        {0, 2, "(text)KYR_Core: [Error] text\n"}, {1, 2, "(text)KYR_Core: [Warning] text\n"},
        {2, 2, "(text)KYR_Core: [Status] text\n"}, {3, 2, ""}, {4, 2, ""}, {3, 4, "(text)KYR_Core: [Debug] text\n"},
        {4, 4, "KYR_Core: [Verbose] text\n"}, {0, -1, ""}, {100, 0, "(text)"}, {100, 100, "(text)"},
        {7, 10, "kyrStatusFail"}, {-1, 2, "(text)kyrStatusFail"}, {-1, -2, ""},
    };
    // clang-format on
    for (const auto& [severity, threshold, expected] : cases) {
        const auto log = [&, number = severity] { fLogger->OutputLogEntry(nullptr, Severity(number), "text"); };
        EXPECT_EQ(Outcome(threshold, log), expected) << severity << " at " << threshold;
    }
}

TEST_F(TLoggerTest, DataIsDumpedAndObeysRulesOfItsOwn) {
    const unsigned char data[10241] = {0, 255, 0x1a};
    const std::string tooMuch = "Too much data to log--10k limit!";
    // clang-format off
    // Severity, threshold and length.
    const std::tuple<int, int, int, std::string> cases[] = {
        {2, 2, 3, "(00 ff 1a )KYR_fake: [Status] 00 ff 1a \n"}, {0, 2, 0, "()KYR_fake: [Error] \n"},
        {0, 2, -5, "()KYR_fake: [Error] \n"}, {4, 4, 1, "KYR_fake: [Verbose] 00 \n"}, {3, 2, 1, ""}, {100, 100, 1, ""},
        {-1, 2, 1, "(00 )kyrStatusFail"}, {4, 2, 10241, "(" + tooMuch + ")KYR_Core: [Error] " + tooMuch + "\n"},
        {-2, -1, 10241, ""},
    };
    // clang-format on
    for (const auto& [severity, threshold, length, expected] : cases) {
        const auto log = [&, number = severity, count = length] {
            fLogger->OutputLogEntry(&fPlugin, Severity(number), data, count);
        };
        EXPECT_EQ(Outcome(threshold, log), expected) << severity << " at " << threshold << ", " << length;
    }
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
