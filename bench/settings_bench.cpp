#include "bench/ratio.h"

#include "foundations/settings/settingsText.h"
#include "foundations/text/utfConvert.h"
#include "platform/thread.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

namespace {

// A folder that goes with the program.
class folder
{
public:
    folder()
        : Path(std::filesystem::temp_directory_path() /
               ("skyreckoning settings bench " + std::to_string(threadId())))
    {
        std::filesystem::create_directories(Path);
    }
    ~folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(Path, ignored);
    }
    folder(const folder&) = delete;
    folder& operator=(const folder&) = delete;

    const std::filesystem::path Path;
};

// One file of so many rows, and a twin that the reference uses so that neither finds the other's locks.
struct settingsFile {
    settingsFile(const std::filesystem::path& place, int rows)
        : Path(place / ("store " + std::to_string(rows) + ".txt")),
          Twin(place / ("twin " + std::to_string(rows) + ".txt")),
          LastKey("Key " + std::to_string(rows - 1))
    {
        Bytes = "[Main]\r\n";
        for (int row = 0; row < rows; ++row)
            Bytes += "Key " + std::to_string(row) + "=" + std::to_string(row * 7919) + "\r\n";
        for (const std::filesystem::path& path : {Path, Twin})
            std::ofstream(path, std::ios::binary) << Bytes;
        const std::u16string units = Path.u16string();
        utfAppend8From16(Root, units.data(), units.size());
    }

    const std::filesystem::path Path;
    const std::filesystem::path Twin;
    const std::string LastKey;
    std::string Bytes;
    std::string Root;
};

const folder& place()
{
    static const folder only;
    return only;
}

void opens(benchmark::State& state, const settingsFile& file)
{
    settingsText store;
    store.Root = file.Root;
    for ([[maybe_unused]] auto _ : state) {
        if (!store.Open(false))
            return state.SkipWithError("the store does not open");
        store.Close(false);
    }
}

void readsValue(benchmark::State& state, const settingsFile& file)
{
    settingsText store;
    store.Root = file.Root;
    for ([[maybe_unused]] auto _ : state) {
        int32_t value = -1;
        store.GetInt32(file.LastKey.c_str(), &value, 1);
        if (value < 0)
            return state.SkipWithError("the value is not found");
        benchmark::DoNotOptimize(value);
    }
}

void writesValue(benchmark::State& state, const settingsFile& file)
{
    settingsText store;
    store.Root = file.Root;
    int32_t value = 0;
    for ([[maybe_unused]] auto _ : state) {
        ++value;
        store.SetInt32(file.LastKey.c_str(), &value, 1);
    }
}

void readsAll(benchmark::State& state, const settingsFile& file)
{
    for ([[maybe_unused]] auto _ : state) {
        std::ifstream stream(file.Twin, std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(stream), {}};
        benchmark::DoNotOptimize(bytes.data());
    }
}

void rewritesAll(benchmark::State& state, const settingsFile& file)
{
    for ([[maybe_unused]] auto _ : state) {
        std::ofstream stream(file.Twin, std::ios::binary);
        stream << file.Bytes;
    }
}

}  // namespace

void ratioGroups()
{
    for (const int rows : {10, 1000}) {
        static std::vector<std::unique_ptr<settingsFile>> files;
        files.push_back(std::make_unique<settingsFile>(place().Path, rows));
        const settingsFile& file = *files.back();
        const auto on = [&file](void (*body)(benchmark::State&, const settingsFile&)) {
            return [&file, body](benchmark::State& state) { body(state, file); };
        };
        const std::string ofRows = " of " + std::to_string(rows) + " rows";
        ratioGroup("settingsText open and close" + ofRows)
            .Measure(on(opens))
            .Against("ifstream into a string", on(readsAll));
        ratioGroup("settingsText read one value" + ofRows)
            .Measure(on(readsValue))
            .Against("ifstream into a string", on(readsAll));
        ratioGroup("settingsText write one value" + ofRows)
            .Measure(on(writesValue))
            .Against("ofstream of the same bytes", on(rewritesAll));
    }
}
