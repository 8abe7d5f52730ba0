// A window's frame in a settings store.
#include "foundations/settings/settings.h"
#include "toolkit/ctrlWindow.h"

#include <algorithm>

namespace {

struct placementKey {
    const char* New;
    const char* Old;
};

constexpr placementKey keyX{"Window - Position - Horizontal", "Left window coordinate"};
constexpr placementKey keyY{"Window - Position - Vertical", "Top window coordinate"};
constexpr placementKey keyWidth{"Window - Size - Horizontal", "Horizontal window size"};
constexpr placementKey keyHeight{"Window - Size - Vertical", "Vertical window size"};
constexpr placementKey keyMaximised{"Window - Maximized", "Window status"};

constexpr int32_t noPosition = INT32_MIN;
constexpr int32_t positionMost = INT16_MAX;  // what systems count positions in has 16 bits
constexpr int32_t noWidth = -1;
constexpr int32_t noHeight = -2;
constexpr int32_t oldStatusMaximised = 0x20;

constexpr uint8_t sizedFrames = frameMaximise | frameMaximiseToo | frameResize;
constexpr uint8_t maximisedFrames = frameMaximise | frameMaximiseToo;

// What a damaged store tells may be anywhere, and a frame is added to it.
int32_t positionOr(int32_t value, int32_t now)
{
    return value == noPosition ? now : std::clamp(value, -positionMost, positionMost);
}

// The new key's value, else the old one's, else `missing`.
int32_t load(settings& store, const placementKey& key, int32_t missing)
{
    int32_t value = missing;
    store.GetInt32(key.Old, &value, 1);
    store.GetInt32(key.New, &value, 1);
    return value;
}

bool loadMaximised(settings& store, bool now)
{
    int32_t status = now ? oldStatusMaximised : 0;
    store.GetInt32(keyMaximised.Old, &status, 1);
    bool maximised = (status & oldStatusMaximised) != 0;
    store.GetBool(keyMaximised.New, &maximised, 1);
    return maximised;
}

uint32_t sizeOr(int32_t value, int32_t missing, uint32_t now)
{
    return value == missing || value < 0 ? now : static_cast<uint32_t>(value);
}

}  // namespace

void ctrlWindow::PlacementLoad(settings& store)
{
    const bool wasMaximised = HasState(stateMaximised);
    const bool opened = store.Open(false);
    const int32_t x = positionOr(load(store, keyX, noPosition), wasMaximised ? RestoredX : X_);
    const int32_t y = positionOr(load(store, keyY, noPosition), wasMaximised ? RestoredY : Y_);
    uint32_t width = Width();
    uint32_t height = Height();
    if (Frame_ & sizedFrames) {
        width = sizeOr(load(store, keyWidth, noWidth), noWidth, width);
        height = sizeOr(load(store, keyHeight, noHeight), noHeight, height);
    }
    bool maximised = wasMaximised;
    if (Frame_ & maximisedFrames)
        maximised = loadMaximised(store, wasMaximised);
    if (opened)
        store.Close(false);

    if (HasState(stateNeverShown)) {
        Move(x, y, width, height);
        if ((Frame_ & maximisedFrames) && maximised)
            StyleSet(styleMaximiseFirst);
        return;
    }
    if (wasMaximised) {
        RestoredX = x;
        RestoredY = y;
        RestoredWidth = width;
        RestoredHeight = height;
        if (!maximised)
            Toolkit().Windows().Show(Handle_, windowShow::Restore);
        return;
    }
    const ctrlLife life(this);
    Move(x, y, width, height);
    if (!life || !maximised)
        return;
    RestoredX = X_;
    RestoredY = Y_;
    Toolkit().Windows().Show(Handle_, windowShow::Maximise);
}

void ctrlWindow::PlacementSave(settings& store)
{
    if (!store.Open(true))
        return;
    const bool maximised = HasState(stateMaximised);
    const int32_t x = maximised ? RestoredX : X_;
    const int32_t y = maximised ? RestoredY : Y_;
    store.SetInt32(keyX.New, &x, 1);
    store.SetInt32(keyY.New, &y, 1);
    if (Frame_ & sizedFrames) {
        const auto width = static_cast<int32_t>(maximised ? RestoredWidth : Width());
        const auto height = static_cast<int32_t>(maximised ? RestoredHeight : Height());
        store.SetInt32(keyWidth.New, &width, 1);
        store.SetInt32(keyHeight.New, &height, 1);
    }
    if (Frame_ & maximisedFrames)
        store.SetBool(keyMaximised.New, &maximised, 1);
    store.Close(true);
}
