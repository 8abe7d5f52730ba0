#include "tools/packer/packBits.h"

#include "tools/packer/packMatches.h"

#include <algorithm>
#include <limits>

namespace {

enum operation : uint8_t {
    End = 0,
    Run = 1,
    Copy = 2,
    Literals = 3,
};

constexpr unsigned OperationBits = 2;

struct numberForm {
    uint32_t Prefix;
    unsigned PrefixBits;
    unsigned Bits;
};

constexpr numberForm NumberForms[] = {
    {0b0, 1, 7}, {0b10, 2, 14}, {0b110, 3, 21}, {0b1110, 4, 28}, {0b11110, 5, 32},
};

const numberForm& FormOf(size_t number)
{
    const auto fits = [number](const numberForm& form) { return number - 1 < uint64_t{1} << form.Bits; };
    return *std::ranges::find_if(NumberForms, fits);
}

unsigned BitsOf(size_t number)
{
    const numberForm& form = FormOf(number);
    return form.PrefixBits + form.Bits;
}

class bitSink
{
public:
    void Put(unsigned count, uint64_t value)
    {
        for (unsigned i = count; i > 0; --i) {
            if (Free == 0) {
                Bytes.push_back(0);
                Free = 8;
            }
            --Free;
            Bytes.back() = static_cast<uint8_t>(Bytes.back() | (value >> (i - 1) & 1) << Free);
        }
    }

    void PutNumber(size_t number)
    {
        const numberForm& form = FormOf(number);
        Put(form.PrefixBits, form.Prefix);
        Put(form.Bits, number - 1);
    }

    std::vector<uint8_t> Bytes = {1, 1};

private:
    unsigned Free = 0;
};

// The cheapest road found to a place in the bytes: its price in bits, and its last item.
struct step {
    uint64_t Price = std::numeric_limits<uint64_t>::max();
    operation Item = End;
    size_t Length = 0;
    size_t Distance = 0;
};

// Looks for the cheapest of all roads from item to item. A literal that follows others costs only itself, so
// places are kept twice: as the end of literals and as the end of anything.
class roads
{
public:
    explicit roads(std::span<const uint8_t> bytes)
        : Bytes(bytes), Any(bytes.size() + 1), Literal(bytes.size() + 1)
    {
        Any[0].Price = 0;
    }

    void Find()
    {
        packMatches matches(Bytes);
        size_t runEnd = 0;
        for (size_t place = 0; place < Bytes.size(); ++place) {
            TryLiteral(place);
            runEnd = std::max(runEnd, place + 1);
            while (runEnd < Bytes.size() && Bytes[runEnd] == Bytes[place])
                ++runEnd;
            TryRun(place, runEnd - place);
            TryCopies(place, matches.At(place));
        }
    }

    // The items of the cheapest road, in order.
    std::vector<step> Items() const
    {
        std::vector<step> items;
        for (size_t place = Bytes.size(); place > 0; place -= items.back().Length)
            items.push_back(Any[place]);
        std::ranges::reverse(items);
        return items;
    }

private:
    static void Offer(step& known, const step& road)
    {
        if (road.Price < known.Price)
            known = road;
    }

    void TryLiteral(size_t place)
    {
        const step& before = Literal[place];
        const size_t length = before.Length + 1;
        step& after = Literal[place + 1];
        if (before.Length > 0)
            after = {before.Price - BitsOf(before.Length) + BitsOf(length) + 8, Literals, length, 0};
        Offer(after, {Any[place].Price + OperationBits + BitsOf(1) + 8, Literals, 1, 0});
        Offer(Any[place + 1], after);
    }

    void TryRun(size_t place, size_t longest)
    {
        for (size_t length = ShortestTried(longest); length <= longest; ++length)
            Offer(Any[place + length],
                  {Any[place].Price + OperationBits + BitsOf(length) + 8, Run, length, 0});
    }

    // A length is worth its nearest match alone.
    void TryCopies(size_t place, const std::vector<packMatch>& matches)
    {
        size_t shortest = 1;
        for (const packMatch& match : matches) {
            const uint64_t base = Any[place].Price + OperationBits + BitsOf(match.Distance);
            for (size_t length = std::max(shortest, ShortestTried(match.Length)); length <= match.Length;
                 ++length)
                Offer(Any[place + length], {base + BitsOf(length), Copy, length, match.Distance});
            shortest = match.Length + 1;
        }
    }

    // Of a very long item only the ends near its own are of use.
    static size_t ShortestTried(size_t longest)
    {
        constexpr size_t Tried = 300;
        return longest > Tried ? longest - Tried : 1;
    }

    std::span<const uint8_t> Bytes;
    std::vector<step> Any;
    std::vector<step> Literal;
};

void Write(const step& item, std::span<const uint8_t> bytes, bitSink& sink)
{
    sink.Put(OperationBits, item.Item);
    sink.PutNumber(item.Length);
    if (item.Item == Copy)
        sink.PutNumber(item.Distance);
    else if (item.Item == Run)
        sink.Put(8, bytes[0]);
    else
        for (const uint8_t byte : bytes.first(item.Length))
            sink.Put(8, byte);
}

}  // namespace

std::vector<uint8_t> packBits(std::span<const uint8_t> bytes)
{
    roads found(bytes);
    found.Find();
    bitSink sink;
    for (const step& item : found.Items()) {
        Write(item, bytes, sink);
        bytes = bytes.subspan(item.Length);
    }
    sink.Put(OperationBits, End);
    return sink.Bytes;
}
