// Messages in random pieces: what comes out must be what a plain reading of the whole stream finds.
#include "fuzz/require.h"
#include "link/pktBuffer.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct outcome {
    std::vector<std::string> Messages;
    bool TooLong = false;

    bool operator==(const outcome&) const = default;
};

outcome readWhole(std::string_view stream)
{
    outcome found;
    while (stream.size() >= sizeof(msgHead)) {
        msgHead head;
        std::memcpy(&head, stream.data(), sizeof head);
        if (head.length > pktBuffer::LengthLimit) {
            found.TooLong = true;
            break;
        }
        const size_t size = sizeof head + head.length;
        if (stream.size() < size)
            break;
        found.Messages.emplace_back(stream.substr(0, size));
        stream.remove_prefix(size);
    }
    return found;
}

// The first bytes say how large each piece is, in turn.
outcome readPieces(std::string_view stream, std::string_view sizes)
{
    outcome found;
    pktBuffer buffer;
    for (size_t turn = 0; !stream.empty(); turn++) {
        const std::span<uint8_t> room = buffer.Room();
        require(!room.empty());
        const size_t piece =
            sizes.empty() ? room.size() : static_cast<uint8_t>(sizes[turn % sizes.size()]) + 1U;
        const size_t count = std::min({piece, room.size(), stream.size()});
        std::memcpy(room.data(), stream.data(), count);
        stream.remove_prefix(count);
        const pktBuffer::State state = buffer.Took(count);
        if (state == pktBuffer::State::TooLong) {
            found.TooLong = true;
            break;
        }
        if (state == pktBuffer::State::Whole) {
            const msgHead& message = buffer.Message();
            found.Messages.emplace_back(reinterpret_cast<const char*>(&message),
                                        sizeof message + message.length);
            buffer.Clear();
        }
    }
    return found;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const size_t sizes = std::min<size_t>(size, 8);
    const std::string_view stream = input.substr(sizes);
    require(readPieces(stream, input.substr(0, sizes)) == readWhole(stream));
    return 0;
}
