#pragma once

#include <QString>

#include <cstddef>

namespace zarvi {

/// What an image stack is, without its frames: the frame size, the frame count, the
/// bit count and format codes recorded with it, and the name shown to the user.
/// Plain value, any thread.
struct ImageStackInfo
{
    int height = 0;
    int width = 0;
    std::size_t frames = 0;
    /// Significant bits per pixel as acquired ("BitCount").
    int bitCount = 16;
    /// Pixel format code ("Format"); 28 is 16-bit greyscale.
    int format = 28;
    QString username;
};

} // namespace zarvi
