#pragma once

namespace zarvi {

/// The fonts and style sheet compiled into the program. They live in the static
/// GUI library, whose resource object the linker would drop unless something
/// refers to it; ensureLoaded() is that reference. GUI thread.
class AppResources
{
public:
    /// Registers the resources once; later calls do nothing.
    static void ensureLoaded();

    static constexpr const char* IconFontResource = ":/fonts/FontAwesome/fontawesome-webfont.ttf";
};

} // namespace zarvi
