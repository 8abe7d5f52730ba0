// skyfacts: what Skyreckoning finds on this machine, as a page of text for a person or for a report of a
// fault.
#include "foundations/heap/mem.h"
#include "foundations/heap/memReportSink.h"
#include "foundations/settings/settingsReg.h"
#include "foundations/text/utfEdit.h"
#include "foundations/text/utfLocale.h"
#include "foundations/text/utfNumber.h"
#include "platform/clock.h"
#include "platform/process.h"
#include "platform/registry.h"

#include <cstdio>
#include <span>
#include <string>
#include <string_view>

namespace {

constexpr char SettingsRoot[] = "Software\\Vintermark\\Skyreckoning";
constexpr int ExitUsage = 2;

enum class settingKind : uint8_t {
    Text,
    Number,
    Truth,
};

struct settingRow {
    const char* Key;
    settingKind Kind;
    int32_t Default;
};

constexpr settingRow Settings[] = {
    {"Connection", settingKind::Text, 0},      {"Serial port", settingKind::Text, 0},
    {"TCP address", settingKind::Text, 0},     {"Server port", settingKind::Number, 4003},
    {"Server enabled", settingKind::Truth, 0},
};

// Joins CR LF to the one line end that a terminal wants.
class pageSink final : public memReportSink
{
public:
    explicit pageSink(std::string& page) : Page(page) {}

private:
    bool Write(const char* bytes, size_t count) override
    {
        for (const char byte : std::span(bytes, count)) {
            if (byte != '\r')
                Page << byte;
        }
        return true;
    }

    std::string& Page;
};

void AppendHeading(std::string& page, const char* heading)
{
    page << "\n" << heading << "\n";
}

void AppendFact(std::string& page, const char* name, const std::string& value)
{
    constexpr size_t NameWidth = 18;
    page << "  " << name;
    page.append(NameWidth - std::min(NameWidth, std::string_view(name).size()), ' ');
    page << " " << value << "\n";
}

std::string Quoted(const std::string& text)
{
    std::string quoted = "\"";
    return quoted << text << "\"";
}

std::string Listed(std::span<const std::string> texts)
{
    std::string list;
    for (const std::string& text : texts)
        list << (list.empty() ? "" : " ") << text;
    return list;
}

std::string Today()
{
    const clockDate today = clockTodayUTC();
    std::string text;
    return text << utfInt(utfFmt::ZeroFill, 'u', uint64_t{today.Year}, 4u) << "-"
                << utfInt(utfFmt::ZeroFill, 'u', uint64_t{today.Month}, 2u) << "-"
                << utfInt(utfFmt::ZeroFill, 'u', uint64_t{today.Day}, 2u);
}

std::string StoredValue(settings& store, const settingRow& row)
{
    std::string text;
    int32_t number = row.Default;
    bool truth = row.Default != 0;
    switch (row.Kind) {
    case settingKind::Text:
        store.GetText(row.Key, &text, 1);
        return Quoted(text);
    case settingKind::Number:
        store.GetInt32(row.Key, &number, 1);
        return text << utfInt('d', int64_t{number});
    case settingKind::Truth:
        store.GetBool(row.Key, &truth, 1);
        return truth ? "yes" : "no";
    }
    return text;
}

void AppendProgram(std::string& page)
{
    AppendHeading(page, "Program");
    AppendFact(page, "Version", SKY_VERSION);
    AppendFact(page, "File", processPath());
    AppendFact(page, "Date (UTC)", Today());
}

void AppendLocale(std::string& page)
{
    std::string number;
    number << utfFlt('f', -1234.5, 0u, 2);
    AppendHeading(page, "Locale");
    AppendFact(page, "A number", number);
    AppendFact(page, "Date separator", Quoted(utfLocale.DateSeparator));
    AppendFact(page, "Time separator", Quoted(utfLocale.TimeSeparator));
    AppendFact(page, "List separator", Quoted(utfLocale.ListSeparator));
    AppendFact(page, "Months", Listed(utfLocale.MonthShort));
    AppendFact(page, "Days", Listed(utfLocale.DayShort));
}

void AppendSettings(std::string& page)
{
    settingsReg store;
    store.Root = SettingsRoot;
    AppendHeading(page, "Settings");
    AppendFact(page, "Kept in", registryPlace());
    for (const settingRow& row : Settings)
        AppendFact(page, row.Key, StoredValue(store, row));
}

void AppendHeap(std::string& page)
{
    AppendHeading(page, "Checked heap");
    pageSink sink(page);
    memReport(sink);
}

}  // namespace

int main(int count, char** arguments)
{
    if (count > 1) {
        const bool help = std::string_view(arguments[1]) == "--help";
        std::fputs("usage: skyfacts\nPrints what Skyreckoning finds on this machine.\n",
                   help ? stdout : stderr);
        return help ? 0 : ExitUsage;
    }
    std::string page = "Skyreckoning: what it finds on this machine\n";
    AppendProgram(page);
    AppendLocale(page);
    AppendSettings(page);
    AppendHeap(page);
    std::fputs(page.c_str(), stdout);
    return 0;
}
