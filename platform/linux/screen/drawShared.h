// Pixels that the display server is shown: in memory that it shares where it can, else sent to it.
#pragma once

#include "platform/linux/screen/drawCairo.h"
#include "platform/linux/screen/windowSurface.h"

class drawShared
{
public:
    // Null when memory fails. A size of 0 counts as 1.
    static std::unique_ptr<drawShared> Make(const windowSurface& surface, uint32_t width, uint32_t height);
    ~drawShared();
    drawShared(const drawShared&) = delete;
    drawShared& operator=(const drawShared&) = delete;

    cairo_surface_t* Surface() const { return Surface_.get(); }

    // Shows a part of the surface, in its place.
    void Show(const cairo_rectangle_int_t& part);

    // Ends what Show began: the server reads shared memory when it comes to it. After `Commit` of a frame,
    // `Await` returns when the server has read it all.
    void Commit();
    void Await();

private:
    explicit drawShared(const windowSurface& surface) : System(surface) {}

    bool Share(int width, int height);
    void ShowSent(const cairo_rectangle_int_t& part);
    void ShowConverted(const cairo_rectangle_int_t& part);

    windowSurface System;
    cairoOwned<cairo_surface_t> Surface_;
    uint32_t Context = 0;  // the server's graphics context
    uint32_t Segment = 0;  // the server's name of the shared memory; 0 for none
    void* Memory = nullptr;
    bool IsDirect = false;  // the server stores pixels as the surface does
    bool IsReading = false;
    unsigned int Reading = 0;  // the request that is answered after the server has read
};
