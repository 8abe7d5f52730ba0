// skydecode: what the decoders make of bytes that a receiver sent, as one JSON object.
#include "platform/process.h"
#include "tools/decode/decodeOptions.h"
#include "tools/decode/decodeSession.h"
#include "tools/decode/jsonWriter.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int ExitWrite = 1;
constexpr int ExitUsage = 2;

int complain(const std::string& reason, int exitCode)
{
    std::fprintf(stderr, "skydecode: %s\n", reason.c_str());
    return exitCode;
}

int print(const std::string& text)
{
    const bool written = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (!written || std::fflush(stdout) != 0)
        return complain(std::string("cannot write the result: ") + std::strerror(errno), ExitWrite);
    return 0;
}

// All that is left of the file. Gives 0, or the system's code when it cannot be read to its end.
int feed(std::FILE* file, size_t chunk, decodeSession& session)
{
    std::vector<uint8_t> bytes(chunk);
    size_t count = 0;
    do {
        count = std::fread(bytes.data(), 1, bytes.size(), file);
        if (std::ferror(file) != 0)
            return errno;
        session.Feed({bytes.data(), count});
    } while (count == bytes.size());
    return 0;
}

int feedNamed(const char* name, size_t chunk, decodeSession& session)
{
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(name, "rb"), std::fclose);
    return file ? feed(file.get(), chunk, session) : errno;
}

int decode(const decodeOptions& options)
{
    processInputBytes();
    decodeSession session(options);
    const bool isNamed = options.File != nullptr;
    const int error =
        isNamed ? feedNamed(options.File, options.Chunk, session) : feed(stdin, options.Chunk, session);
    if (error != 0) {
        const std::string name = isNamed ? jsonQuoted(options.File) : "standard input";
        return complain("cannot read " + name + ": " + std::strerror(error), ExitUsage);
    }
    return print(session.Describe());
}

}  // namespace

int main(int count, char** arguments)
{
    std::string fault;
    const std::vector<const char*> given(arguments + (count > 0 ? 1 : 0), arguments + count);
    const std::optional<decodeOptions> options = decodeParse(given, fault);
    if (!options)
        return complain(fault, ExitUsage);
    return options->Help ? print(decodeUsage) : decode(*options);
}
