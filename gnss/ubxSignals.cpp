#include "gnss/ubxSignals.h"

namespace {

using enum ubxSignal;

// A request beside the selection that stands, in the words in which the rules are said.
class change
{
public:
    change(ubxSignalSet present, ubxSignalSet requested)
        : Present(present), Requested(requested), Result(requested)
    {}

    bool Wants(ubxSignal signal) const { return Requested.Has(signal); }
    bool Differs(ubxSignal signal) const { return Requested.Has(signal) != Present.Has(signal); }
    bool IsPresent(ubxSignal signal) const { return Present.Has(signal); }
    bool NewlyWants(ubxSignal signal) const { return Wants(signal) && !IsPresent(signal); }
    void Set(ubxSignal signal, bool on) { Result.Set(signal, on); }

    // The wish for two signals that only go together: the one that was touched says it, `first` before
    // `other`.
    bool Common(ubxSignal first, ubxSignal other) const { return Wants(Differs(first) ? first : other); }

    ubxSignalSet Outcome() const { return Result; }

private:
    ubxSignalSet Present;
    ubxSignalSet Requested;
    ubxSignalSet Result;
};

constexpr ubxSignalSet NeverOn7 = ubxSignalSet::Of(BeiDouB1I, BeiDouB2a, GalileoE1, GalileoE5a, GalileoE5b,
                                                   GPSL2C, GPSL5, IMES, NavICL5, QZSSL1S, QZSSL5);
constexpr ubxSignalSet NeverOn9 =
    ubxSignalSet::Of(BeiDouB2a, GalileoE5a, GPSL2C, GPSL5, IMES, NavICL5, QZSSL1S, QZSSL5);

ubxSignalSet Without(ubxSignalSet signals, ubxSignalSet never)
{
    signals.Remove(never);
    return signals;
}

// BeiDou and GLONASS share the second radio path, so the one newly wanted wins.
ubxSignalSet RulesOfM8(change wish)
{
    if (wish.NewlyWants(BeiDouB1I))
        wish.Set(GLONASSL1, false);
    else if (wish.NewlyWants(GLONASSL1))
        wish.Set(BeiDouB1I, false);
    wish.Set(QZSSL1CA, wish.Wants(GPSL1CA));
    return wish.Outcome();
}

// The second band is on for all constellations or for none; whichever of its flags was touched says so.
bool SecondBandOfZedF9R(const change& wish)
{
    for (const ubxSignal signal : {GalileoE5b, GLONASSL2, BeiDouB2I})
        if (wish.Differs(signal))
            return wish.Wants(signal);
    return wish.Wants(GPSL2C);
}

ubxSignalSet RulesOfZedF9R(change wish)
{
    const bool second = SecondBandOfZedF9R(wish);
    wish.Set(GalileoE5b, wish.Wants(GalileoE1) && second);
    wish.Set(GPSL2C, wish.Wants(GPSL1CA) && second);
    wish.Set(QZSSL2C, wish.Wants(GPSL1CA) && second);
    wish.Set(GLONASSL2, wish.Wants(GLONASSL1) && second);
    wish.Set(BeiDouB2I, wish.Wants(BeiDouB1I) && second);
    wish.Set(SBAS, wish.Wants(SBAS) && (wish.Wants(GPSL1CA) || wish.Wants(GalileoE1)));
    wish.Set(QZSSL1CA, wish.Wants(GPSL1CA));
    return wish.Outcome();
}

// BeiDou B1I shares its radio path with BeiDou B1C and GLONASS, so what is newly wanted wins.
ubxSignalSet RulesOfM10(change wish)
{
    if (wish.NewlyWants(BeiDouB1C) || wish.NewlyWants(GLONASSL1)) {
        wish.Set(BeiDouB1I, false);
    } else if (wish.NewlyWants(BeiDouB1I)) {
        wish.Set(BeiDouB1C, false);
        wish.Set(GLONASSL1, false);
    }
    return wish.Outcome();
}

// QZSS needs GPS; of its three flags the one that would change says the wish for all.
bool QZSSOfNeoF10N(const change& wish, bool gps)
{
    for (const ubxSignal signal : {QZSSL1S, QZSSL5}) {
        const bool wanted = gps && wish.Wants(signal);
        if (wanted != wish.IsPresent(signal))
            return wanted;
    }
    return gps && wish.Wants(QZSSL1CA);
}

// Both bands of a constellation move together.
ubxSignalSet RulesOfNeoF10N(change wish)
{
    const bool gps = wish.Common(GPSL5, GPSL1CA);
    const bool galileo = wish.Common(GalileoE5a, GalileoE1);
    const bool beiDou = wish.Common(BeiDouB2a, BeiDouB1C);
    const bool qzss = QZSSOfNeoF10N(wish, gps);
    for (const ubxSignal signal : {GPSL1CA, GPSL5})
        wish.Set(signal, gps);
    for (const ubxSignal signal : {GalileoE1, GalileoE5a})
        wish.Set(signal, galileo);
    for (const ubxSignal signal : {BeiDouB1C, BeiDouB2a})
        wish.Set(signal, beiDou);
    for (const ubxSignal signal : {QZSSL1CA, QZSSL1S, QZSSL5})
        wish.Set(signal, qzss);
    if (!gps && !galileo && !beiDou)
        wish.Set(NavICL5, false);
    return wish.Outcome();
}

}  // namespace

void ubxSharedSignals::Replace(ubxSignalSet signals, ubxSignalSet mask)
{
    uint32_t before = Word.load();
    uint32_t after = 0;
    do {
        after = (before & ~mask.Bits()) | (signals.Bits() & mask.Bits());
    } while (!Word.compare_exchange_weak(before, after));
}

ubxSignalSet ubxSignalRules(uint8_t model, ubxSignalSet present, ubxSignalSet requested)
{
    switch (model) {
    case ubxModel::Seven:
        return Without(requested, NeverOn7);
    case ubxModel::M8:
        return RulesOfM8({present, requested});
    case ubxModel::M9:
    case ubxModel::NeoM9N:
        return Without(requested, NeverOn9);
    case ubxModel::ZedF9R:
        return RulesOfZedF9R({present, requested});
    case ubxModel::M10:
    case ubxModel::MaxM10S:
        return RulesOfM10({present, requested});
    case ubxModel::NeoF10N:
        return RulesOfNeoF10N({present, requested});
    default:
        return requested;
    }
}
