#pragma once

#include <QObject>
#include <QPalette>
#include <QString>

namespace QB::Desk {

enum class Theme { System, Light, Dark };

/// "system", "light" or "dark", as settings and command line spell it; Theme::System for others.
Theme themeOfName(const QString& name);
QString nameOfTheme(Theme theme);

/// Gives the whole application the looks of a theme and tells the library which one it is. All
/// widgets hear of it at once through a change of palette. Main thread.
class ThemeSwitcher {
public:
    /// Remembers the system's looks, so it is made before the first apply().
    ThemeSwitcher();

    void apply(Theme theme);
    Theme theme() const { return m_theme; }

private:
    const QPalette m_systemPalette;
    const QString m_systemStyle;
    Theme m_theme = Theme::System;
};

}  // namespace QB::Desk
