#include "GuiTestSupport.h"

#include "app/ApplicationStartup.h"
#include "app/IconFont.h"
#include "app/InstanceLock.h"
#include "app/MainWindow.h"
#include "app/StartupOptions.h"
#include "common/TempDir.h"

#include <QApplication>
#include <QDir>
#include <QFileInfo>

#include <gtest/gtest.h>

using namespace zarvi;
using zarvi::test::TempDir;

namespace {

int mainWindowCount()
{
    int count = 0;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (qobject_cast<MainWindow*>(widget))
            ++count;
    return count;
}

} // namespace

TEST(Startup, SecondInstanceIsRefusedWithoutAMainWindow)
{
    TempDir dir;
    const QString tempFolder = dir.file(QStringLiteral("zarvi_Temp"));
    ASSERT_TRUE(QDir().mkpath(tempFolder));
    EXPECT_EQ(InstanceLock::lockFilePath(tempFolder),
              tempFolder + QStringLiteral("/54A3BC54-0A4E-47B6-A67D-98ED990E9FE1.lock"));

    // The instance already running.
    InstanceLock first(tempFolder);
    ASSERT_TRUE(first.tryLock(100));

    QStringList shown;
    const int windowsBefore = mainWindowCount();
    {
        ApplicationStartup second(*qApp, {tempFolder, [&](const QString& text) { shown << text; }});
        EXPECT_EQ(second.run(), 1);
        EXPECT_EQ(second.mainWindow(), nullptr);
        EXPECT_FALSE(second.holdsLock());
        EXPECT_EQ(second.iconFont(), nullptr);
    }
    EXPECT_EQ(mainWindowCount(), windowsBefore);
    ASSERT_EQ(shown.size(), 1);
    EXPECT_EQ(shown.first(), QStringLiteral("zarvi is already running.\r\nOnly one instance is allowed."));
    EXPECT_TRUE(first.isLocked());

    // Once the first instance ends, a start goes through.
    first.unlock();
    ApplicationStartup next(*qApp, {tempFolder, [&](const QString& text) { shown << text; }});
    EXPECT_TRUE(next.prepare());
    EXPECT_TRUE(next.holdsLock());
    EXPECT_EQ(shown.size(), 1);
    next.shutdown();
    InstanceLock after(tempFolder);
    EXPECT_TRUE(after.tryLock(100));
}

TEST(Startup, PreparesIdentityFontFolderIconsAndStyle)
{
    TempDir dir;
    // Missing parents are created too.
    const QString tempFolder = dir.file(QStringLiteral("a/b/zarvi_Temp"));
    ApplicationStartup startup(*qApp, {tempFolder, [](const QString&) {}});
    ASSERT_TRUE(startup.prepare());

    EXPECT_TRUE(QFileInfo(tempFolder).isDir());
    EXPECT_TRUE(QFileInfo::exists(InstanceLock::lockFilePath(tempFolder)));
    EXPECT_EQ(QCoreApplication::organizationName(), QStringLiteral("Orvel Inc."));
    EXPECT_EQ(QCoreApplication::applicationName(), QStringLiteral("zarvi"));
    EXPECT_EQ(QApplication::font().family(), QStringLiteral("Lato"));
    EXPECT_EQ(QApplication::font().pointSize(), 8);
    EXPECT_EQ(QApplication::font().weight(), QFont::Normal);
    EXPECT_FALSE(QApplication::font().italic());

    ASSERT_NE(startup.iconFont(), nullptr);
    EXPECT_TRUE(startup.iconFont()->isLoaded());
    EXPECT_EQ(startup.iconFont()->defaultOption(QStringLiteral("color")).toString(),
              QStringLiteral("#4e9ccf"));
    EXPECT_EQ(startup.iconFont()->defaultOption(QStringLiteral("color-disabled")).toString(),
              QStringLiteral("#516070"));
    EXPECT_EQ(startup.iconFont()->defaultOption(QStringLiteral("color-selected")).toString(),
              QStringLiteral("#cccccc"));
    EXPECT_EQ(startup.iconFont()->defaultOption(QStringLiteral("color-active")).toString(),
              QStringLiteral("#cccccc"));
    // The dark style, with its images compiled in beside it.
    EXPECT_TRUE(qApp->styleSheet().contains(QStringLiteral(":/qss_icons/dark/rc/")));
    EXPECT_TRUE(QFileInfo::exists(QStringLiteral(":/qss_icons/dark/rc/arrow_down.png")));

    // The icons are drawn in the colour of their mode.
    const QImage normal = startup.iconFont()->icon(IconFont::Database).pixmap(32, 32).toImage();
    const QImage disabled =
        startup.iconFont()->icon(IconFont::Database).pixmap(32, 32, QIcon::Disabled).toImage();
    auto hasColor = [](const QImage& image, const QColor& color) {
        for (int y = 0; y < image.height(); ++y)
            for (int x = 0; x < image.width(); ++x) {
                const QColor pixel = image.pixelColor(x, y);
                if (pixel.alpha() == 255 && pixel.rgb() == color.rgb())
                    return true;
            }
        return false;
    };
    EXPECT_TRUE(hasColor(normal, QColor(QStringLiteral("#4e9ccf"))));
    EXPECT_TRUE(hasColor(disabled, QColor(QStringLiteral("#516070"))));

    MainWindow* window = startup.showMainWindow();
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(window->parent(), nullptr);
    EXPECT_TRUE(window->isMaximized());
    startup.shutdown();
    EXPECT_EQ(startup.mainWindow(), nullptr);
    EXPECT_FALSE(startup.holdsLock());
}

TEST(Startup, CommandLine)
{
    const StartupOptions files = StartupOptions::parse({"zarvi", "a.orvel", "/data/b.orvel"});
    EXPECT_FALSE(files.demo);
    EXPECT_EQ(files.files, QStringList({"a.orvel", "/data/b.orvel"}));
    EXPECT_TRUE(files.error.isEmpty());

    const StartupOptions demo = StartupOptions::parse({"zarvi", "--demo"});
    EXPECT_TRUE(demo.demo);
    EXPECT_TRUE(demo.files.isEmpty());

    EXPECT_FALSE(StartupOptions::parse({"zarvi", "--bogus"}).error.isEmpty());
}
