#include "ZrUtil/ZrAsync.h"

#include <thread>
#include <utility>

namespace zr {

void async(std::function<void()> fn)
{
    if (!fn)
        return;
    std::thread(std::move(fn)).detach();
}

} // namespace zr
