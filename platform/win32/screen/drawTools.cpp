#include "platform/win32/screen/drawTools.h"

namespace {

// The imaging factory of the second version, which comes with the system.
constexpr CLSID ImagingFactory = {
    0x317D06E8, 0x5F24, 0x433D, {0xBD, 0xF7, 0x79, 0xCE, 0x68, 0xD8, 0xAB, 0xC2}};

constexpr D2D1_STROKE_STYLE_PROPERTIES DashProperties = {D2D1_CAP_STYLE_FLAT,
                                                         D2D1_CAP_STYLE_FLAT,
                                                         D2D1_CAP_STYLE_ROUND,
                                                         D2D1_LINE_JOIN_MITER,
                                                         10.0f,
                                                         D2D1_DASH_STYLE_DASH,
                                                         0.0f};

}  // namespace

bool drawTools::Make()
{
    drawTools made;
    if (FAILED(D2D1CreateFactory(D2D1_FACTORY_TYPE_MULTI_THREADED, __uuidof(ID2D1Factory), nullptr,
                                 made.Drawing.PutAny())) ||
        FAILED(DWriteCreateFactory(DWRITE_FACTORY_TYPE_SHARED, __uuidof(IDWriteFactory),
                                   reinterpret_cast<IUnknown**>(made.Text.Put()))) ||
        FAILED(made.Text->GetSystemFontCollection(made.Fonts.Put(), FALSE)) ||
        FAILED(made.Drawing->CreateStrokeStyle(&DashProperties, nullptr, 0, made.Dashes.Put())) ||
        FAILED(CoCreateInstance(ImagingFactory, nullptr, CLSCTX_INPROC_SERVER, __uuidof(IWICImagingFactory),
                                made.Imaging.PutAny())))
        return false;
    *this = std::move(made);
    return true;
}
