// A text in a small window of its own. It has its own connection and its own loop, so that it works on any
// thread and whatever became of the rest of the program.
#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowHints.h"
#include "platform/linux/screen/windowKeyTable.h"
#include "platform/linux/screen/windowKeys.h"

#include <cairo/cairo-xcb.h>
#include <pango/pangocairo.h>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int Margin = 20;
constexpr int TextWidth = 480;
constexpr int LeastWidth = 240;
constexpr int ButtonWidth = 88;
constexpr int ButtonHeight = 28;
constexpr double Background = 0.94;
constexpr double ButtonFace = 0.88;
constexpr double ButtonEdge = 0.45;
constexpr char Font[] = "Sans 10";

struct extent {
    int Width = 0;
    int Height = 0;
};

PangoLayout* layoutOf(cairo_t* context, const std::string& text)
{
    PangoLayout* const layout = pango_cairo_create_layout(context);
    PangoFontDescription* const font = pango_font_description_from_string(Font);
    pango_layout_set_font_description(layout, font);
    pango_font_description_free(font);
    pango_layout_set_width(layout, TextWidth * PANGO_SCALE);
    pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    pango_layout_set_text(layout, text.c_str(), static_cast<int>(text.size()));
    return layout;
}

extent extentOf(PangoLayout* layout)
{
    extent size;
    pango_layout_get_pixel_size(layout, &size.Width, &size.Height);
    return size;
}

extent measure(const std::string& text)
{
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, 1, 1);
    cairo_t* const context = cairo_create(surface);
    PangoLayout* const layout = layoutOf(context, text);
    const extent size = extentOf(layout);
    g_object_unref(layout);
    cairo_destroy(context);
    cairo_surface_destroy(surface);
    return size;
}

class alertWindow
{
public:
    alertWindow(const std::string& title, const std::string& text) : Title(title), Text(text) {}

    // False when there is no screen.
    bool Run();

private:
    void Make();
    void Paint();
    bool IsEnd(const xcb_generic_event_t& event);

    const std::string& Title;
    const std::string& Text;
    windowDisplay Display;
    windowKeys Keys;
    xcb_window_t Window = 0;
    extent Size;
};

bool alertWindow::Run()
{
    uint32_t error = 0;
    if (!Display.Open(error))
        return false;
    Keys.Open(Display.Connection);
    const extent text = measure(Text);
    Size = {std::max(text.Width, LeastWidth) + 2 * Margin, text.Height + ButtonHeight + 3 * Margin};
    Make();
    while (const xcbReply<xcb_generic_event_t> event{xcb_wait_for_event(Display.Connection)}) {
        if (!Keys.Heed(*event) && IsEnd(*event))
            break;
    }
    return true;
}

void alertWindow::Make()
{
    const xcb_screen_t& screen = *Display.Screen;
    const int x = std::max(0, (screen.width_in_pixels - Size.Width) / 2);
    const int y = std::max(0, (screen.height_in_pixels - Size.Height) / 3);
    const uint32_t heed = XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_KEY_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE;
    Window = xcb_generate_id(Display.Connection);
    xcb_create_window(Display.Connection, XCB_COPY_FROM_PARENT, Window, screen.root, static_cast<int16_t>(x),
                      static_cast<int16_t>(y), static_cast<uint16_t>(Size.Width),
                      static_cast<uint16_t>(Size.Height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
                      screen.root_visual, XCB_CW_EVENT_MASK, &heed);
    Display.SetText(Window, Display.Atom(atomNetName), Display.Atom(atomUtf8), Title);
    Display.SetText(Window, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, windowTextToLatin(Title));
    const uint32_t protocols[] = {Display.Atom(atomDeleteWindow)};
    Display.SetWords(Window, Display.Atom(atomProtocols), XCB_ATOM_ATOM, protocols);
    const uint32_t types[] = {Display.Atom(atomNetTypeDialog)};
    Display.SetWords(Window, Display.Atom(atomNetType), XCB_ATOM_ATOM, types);
    const uint32_t states[] = {Display.Atom(atomNetStateAbove)};
    Display.SetWords(Window, Display.Atom(atomNetState), XCB_ATOM_ATOM, states);
    Display.SetWords(Window, XCB_ATOM_WM_NORMAL_HINTS, XCB_ATOM_WM_SIZE_HINTS,
                     windowHintsOfSize(styleSystemMenu, {x, y, x + Size.Width, y + Size.Height}, {}, {}));
    xcb_map_window(Display.Connection, Window);
    if (!Display.HasManager())
        xcb_set_input_focus(Display.Connection, XCB_INPUT_FOCUS_PARENT, Window, XCB_CURRENT_TIME);
    xcb_flush(Display.Connection);
}

void alertWindow::Paint()
{
    cairo_surface_t* const surface =
        cairo_xcb_surface_create(Display.Connection, Window, Display.Visual, Size.Width, Size.Height);
    cairo_t* const context = cairo_create(surface);
    cairo_set_source_rgb(context, Background, Background, Background);
    cairo_paint(context);
    PangoLayout* const text = layoutOf(context, Text);
    cairo_set_source_rgb(context, 0, 0, 0);
    cairo_move_to(context, Margin, Margin);
    pango_cairo_show_layout(context, text);
    g_object_unref(text);

    const int left = (Size.Width - ButtonWidth) / 2;
    const int top = Size.Height - Margin - ButtonHeight;
    cairo_rectangle(context, left + 0.5, top + 0.5, ButtonWidth - 1, ButtonHeight - 1);
    cairo_set_source_rgb(context, ButtonFace, ButtonFace, ButtonFace);
    cairo_fill_preserve(context);
    cairo_set_source_rgb(context, ButtonEdge, ButtonEdge, ButtonEdge);
    cairo_set_line_width(context, 1);
    cairo_stroke(context);
    PangoLayout* const label = layoutOf(context, "OK");
    const extent size = extentOf(label);
    cairo_set_source_rgb(context, 0, 0, 0);
    const int labelLeft = left + (ButtonWidth - size.Width) / 2;
    const int labelTop = top + (ButtonHeight - size.Height) / 2;
    cairo_move_to(context, labelLeft, labelTop);
    pango_cairo_show_layout(context, label);
    g_object_unref(label);

    cairo_destroy(context);
    cairo_surface_finish(surface);
    cairo_surface_destroy(surface);
    xcb_flush(Display.Connection);
}

// Whether the text was read.
bool alertWindow::IsEnd(const xcb_generic_event_t& event)
{
    switch (event.response_type & 0x7F) {
    case XCB_EXPOSE:
        Paint();
        return false;
    case XCB_BUTTON_RELEASE: {
        const auto& release = reinterpret_cast<const xcb_button_release_event_t&>(event);
        const int left = (Size.Width - ButtonWidth) / 2;
        const int top = Size.Height - Margin - ButtonHeight;
        return release.detail == 1 && release.event_x >= left && release.event_x < left + ButtonWidth &&
               release.event_y >= top && release.event_y < top + ButtonHeight;
    }
    case XCB_KEY_PRESS: {
        std::u16string text;
        const uint32_t key = Keys.Press(reinterpret_cast<const xcb_key_press_event_t&>(event).detail, text);
        return key == keyEnter || key == keyEscape || key == keySpace;
    }
    case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
        return message.type == Display.Atom(atomProtocols) &&
               message.data.data32[0] == Display.Atom(atomDeleteWindow);
    }
    default:
        return false;
    }
}

}  // namespace

void windowBackend::Alert(const std::string& title, const std::string& text)
{
    if (!alertWindow(title, text).Run())
        std::fprintf(stderr, "%s: %s\n", title.c_str(), text.c_str());
}
