// The host logging library: rendering conventions, the in-process sink, the JSON-lines file
// sink and concurrent use.
#include "LogCapture.h"

#include "xelto/Logging.h"
#include "xelto/LogSink.h"

#include <gtest/gtest.h>
#include "LumavenRapidJson.h"

#include <windows.h>

#include <cstdint>
#include <fstream>
#include <sstream>
#include <thread>
#include <vector>

using LumavenTest::LogCapture;
using Xelto::Logging::Level;

namespace {

TraceLogger& Logger()
{
    return *LogManager::GetLogger();
}

std::wstring Only(const LogCapture& capture)
{
    const auto texts = capture.Texts();
    EXPECT_EQ(texts.size(), 1u);
    return texts.empty() ? L"" : texts.back();
}

}  // namespace

TEST(Logging, WideFormatPrintsPercentSLowerAsWideAndUpperAsNarrow)
{
    LogCapture capture;
    Logger().LogInfo(L"%s|%S|%d|%u|%x|%X|%lld", L"wide", "narrow", -5, 7u, 0xabu, 0xabu, -1234567890123ll);
    EXPECT_EQ(Only(capture), L"wide|narrow|-5|7|ab|AB|-1234567890123");
}

TEST(Logging, NarrowFormatIsWidenedAndKeepsTheWideConventions)
{
    LogCapture capture;
    Logger().LogError("LumavenService - GetOpst threw: %S", "Xelto::Name", "ignored message");
    Logger().LogError("%s and %S\n", L"wide arg", "narrow arg");
    const auto texts = capture.Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0], L"LumavenService - GetOpst threw: Xelto::Name");
    EXPECT_EQ(texts[1], L"wide arg and narrow arg\n");
    EXPECT_EQ(capture.Records()[0].level, Level::Error);
}

TEST(Logging, LoggingDataCarriesTheContextWordAndLevel)
{
    LogCapture capture;
    Logger().LogWarning(LoggingData{L"%S.%S - %S cannot be null", 0x1234, 0}, "class A", "B", "message");
    Logger().LogError(LoggingData{L"%S.%S - Unsupported Function call %d", 77, 0}, "class A", "ExecuteCommand", 15);
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].level, Level::Warning);
    EXPECT_EQ(records[0].context, 0x1234u);
    EXPECT_EQ(records[0].text, L"class A.B - message cannot be null");
    EXPECT_EQ(records[1].level, Level::Error);
    EXPECT_EQ(records[1].context, 77u);
    EXPECT_EQ(records[1].text, L"class A.ExecuteCommand - Unsupported Function call 15");
}

TEST(Logging, RecordsTheProviderNameInEffect)
{
    LogCapture capture;
    LogManager::SetProvider("Provider-One");
    Logger().LogInfo(L"first");
    LogManager::SetProvider("Xelto-Spanlet-SystemInformation");
    Logger().LogInfo(L"second");
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].provider, "Provider-One");
    EXPECT_EQ(records[1].provider, "Xelto-Spanlet-SystemInformation");
}

TEST(Logging, LongRecordsAreRenderedWhole)
{
    LogCapture capture;
    const std::wstring big(5000, L'x');
    Logger().LogInfo(L"<%s>", big.c_str());
    EXPECT_EQ(Only(capture), L"<" + big + L">");
}

// The formatter fills a stack buffer of 512 characters first, then a heap buffer of 2048 that
// doubles; a record exactly as long as either buffer has no room left for its terminator and
// must still come out whole, as must its neighbours.
TEST(Logging, RecordsAsLongAsARenderBufferAreWhole)
{
    for (const size_t length : {511u, 512u, 513u, 2047u, 2048u, 2049u}) {
        LogCapture capture;
        const std::wstring text(length, L'y');
        Logger().LogInfo(L"%s", text.c_str());
        EXPECT_EQ(Only(capture), text) << length << " characters";
    }
}

TEST(Logging, NullFormatsAreIgnoredWithoutCrashing)
{
    LogCapture capture;
    Logger().LogInfo(nullptr);
    Logger().LogError(static_cast<const char*>(nullptr));
    Logger().LogWarning(LoggingData{nullptr, 0, 0});
    for (const auto& text : capture.Texts()) {
        EXPECT_TRUE(text.empty());
    }
}

TEST(Logging, FileSinkWritesOneJsonObjectPerLine)
{
    wchar_t directory[MAX_PATH];
    GetTempPathW(MAX_PATH, directory);
    const std::wstring path = std::wstring(directory) + L"xelto-log-test.jsonl";
    DeleteFileW(path.c_str());
    SetEnvironmentVariableW(L"XELTO_LOG_FILE", path.c_str());
    LogManager::SetProvider("Xelto-Spanlet-SystemInformation");
    Logger().LogInfo(L"Opening startup_task in LumavenService\n");
    Logger().LogWarning(LoggingData{L"quote \" back \\ tab \t ctl \x01 %S", 42, 0}, "end");
    Logger().LogError(L"caf\u00e9 \U0001F600");
    SetEnvironmentVariableW(L"XELTO_LOG_FILE", nullptr);
    Logger().LogInfo(L"not in the file");

    std::ifstream in(path.c_str(), std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);) {
        lines.push_back(line);
    }
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(
        lines[0],
        R"({"level":"INFO","provider":"Xelto-Spanlet-SystemInformation","context":0,"text":"Opening startup_task in LumavenService\n"})");
    EXPECT_EQ(
        lines[1],
        R"({"level":"WARNING","provider":"Xelto-Spanlet-SystemInformation","context":42,"text":"quote \" back \\ tab \t ctl \u0001 end"})");
    rapidjson::Document third;
    third.Parse(lines[2].c_str());
    ASSERT_FALSE(third.HasParseError());
    EXPECT_STREQ(third["level"].GetString(), "ERROR");
    EXPECT_STREQ(third["text"].GetString(), "caf\xC3\xA9 \xF0\x9F\x98\x80");
    DeleteFileW(path.c_str());
}

TEST(Logging, ManyThreadsLoseNoRecord)
{
    LogCapture capture;
    constexpr int kThreads = 8;
    constexpr int kRecords = 500;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kRecords; ++i) {
                Logger().LogInfo(L"thread %d record %d", t, i);
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    const auto texts = capture.Texts();
    ASSERT_EQ(texts.size(), static_cast<size_t>(kThreads * kRecords));
    EXPECT_EQ(capture.Count(L"thread 3 record 499"), 1u);
}

namespace {

// A log file in the temporary folder, named by XELTO_LOG_FILE while the object lives.
class LogFile {
public:
    explicit LogFile(const wchar_t* name)
    {
        wchar_t directory[MAX_PATH];
        GetTempPathW(MAX_PATH, directory);
        m_path = std::wstring(directory) + name;
        DeleteFileW(m_path.c_str());
        SetEnvironmentVariableW(L"XELTO_LOG_FILE", m_path.c_str());
    }
    ~LogFile()
    {
        SetEnvironmentVariableW(L"XELTO_LOG_FILE", nullptr);
        DeleteFileW(m_path.c_str());
    }
    LogFile(const LogFile&) = delete;
    LogFile& operator=(const LogFile&) = delete;

    std::vector<std::string> Lines() const
    {
        std::ifstream in(m_path.c_str(), std::ios::binary);
        std::vector<std::string> lines;
        for (std::string line; std::getline(in, line);) {
            lines.push_back(line);
        }
        return lines;
    }

private:
    std::wstring m_path;
};

}  // namespace

TEST(Logging, FileSinkEscapesEveryControlCharacterAndKeepsLoneSurrogates)
{
    const LogFile file(L"xelto-log-escapes.jsonl");
    LogManager::SetProvider("quote\"back\\slash\x01");
    Logger().LogInfo(L"%s", L"\b\f\r\n\t \u20AC \xD800x \xDC00 \xD83D\xE000 end\xD83D");
    LogManager::SetProvider("Xelto-Spanlet-SystemInformation");
    const std::vector<std::string> lines = file.Lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0], std::string(R"({"level":"INFO","provider":"quote\"back\\slash\u0001","context":0,)") +
                            R"("text":"\b\f\r\n\t )" + "\xE2\x82\xAC" + R"( \uD800x \uDC00 \uD83D)" + "\xEE\x80\x80" +
                            R"( end\uD83D"})");
}

TEST(Logging, ANullProviderNameIsEmpty)
{
    LogCapture capture;
    LogManager::SetProvider(nullptr);
    Logger().LogInfo(L"unnamed");
    LogManager::SetProvider("Xelto-Spanlet-SystemInformation");
    const auto records = capture.Records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].provider, "");
    EXPECT_EQ(records[0].text, L"unnamed");
}

TEST(Logging, AFileThatCannotBeWrittenCostsOnlyTheFileCopy)
{
    LogCapture capture;
    SetEnvironmentVariableW(L"XELTO_LOG_FILE", L"C:\\no-such-folder-of-xelto\\log.jsonl");
    Logger().LogInfo(L"unopenable");
    // A name longer than any path is not taken at all.
    const std::wstring tooLong = L"C:\\" + std::wstring(600, L'a') + L".jsonl";
    SetEnvironmentVariableW(L"XELTO_LOG_FILE", tooLong.c_str());
    Logger().LogInfo(L"unnamed file");
    SetEnvironmentVariableW(L"XELTO_LOG_FILE", nullptr);
    EXPECT_EQ(capture.Texts(), (std::vector<std::wstring>{L"unopenable", L"unnamed file"}));
    EXPECT_EQ(GetFileAttributesW(L"C:\\no-such-folder-of-xelto"), INVALID_FILE_ATTRIBUTES);
}

TEST(Logging, RecordsBeyondAMebiCharacterAreCut)
{
    LogCapture capture;
    const std::wstring huge(3u << 20, L'x');
    Logger().LogInfo(L"%s", huge.c_str());
    const std::wstring text = Only(capture);
    EXPECT_EQ(text.size(), 1u << 20);
    EXPECT_EQ(text, huge.substr(0, 1u << 20));
}

// A level number the library does not know (a newer host's, say) is named as the default one.
TEST(Logging, AnUnknownLevelIsNamedInfo)
{
    EXPECT_STREQ(Xelto::Logging::LevelName(Level::Warning), "WARNING");
    EXPECT_STREQ(Xelto::Logging::LevelName(Level::Error), "ERROR");
    EXPECT_STREQ(Xelto::Logging::LevelName(Level::Info), "INFO");
    EXPECT_STREQ(Xelto::Logging::LevelName(static_cast<Level>(7)), "INFO");
}

TEST(Logging, NothingIsRenderedWhileNobodyListens)
{
    // No sink and no file: an argument that rendering would read (an address nothing is
    // mapped at) is never touched, so these calls return quietly.
    SetEnvironmentVariableW(L"XELTO_LOG_FILE", nullptr);
    const auto* unmapped = reinterpret_cast<const wchar_t*>(static_cast<uintptr_t>(8));
    Logger().LogInfo(L"%s", unmapped);
    Logger().LogError("%s", unmapped);
    Logger().LogError(L"%s", unmapped);
    Logger().LogError(LoggingData{L"%s", 1, 0}, unmapped);
    Logger().LogWarning(LoggingData{L"%s", 1, 0}, unmapped);
    LogCapture capture;
    Logger().LogInfo(L"%s", L"listened to");
    EXPECT_EQ(Only(capture), L"listened to");
}
