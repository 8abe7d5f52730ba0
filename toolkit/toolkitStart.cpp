// The toolkit's static objects, which come up in the order of this file and go in the reverse one.
#include "toolkit/ctrlToolkit.h"
#include "toolkit/drawing.h"

namespace {

ctrlToolkit theToolkit;
const std::unique_ptr<drawSystem> theDrawing = drawSystemMake();

}  // namespace

ctrlToolkit& Toolkit()
{
    return theToolkit;
}

drawSystem* Drawing()
{
    return theDrawing.get();
}
