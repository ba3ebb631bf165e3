#include "ZrUtil/ZrGeoImg.h"

#include <cstdlib>
#include <cstring>

ZrGeoImg::~ZrGeoImg()
{
    std::free(buffer);
    buffer = nullptr;
    std::memset(values, 0, sizeof values);
}

ZrGeoImg& ZrGeoImg::operator=(const ZrGeoImg& other)
{
    if (this != &other)
        std::memcpy(values, other.values, sizeof values);
    buffer = other.buffer;
    return *this;
}
