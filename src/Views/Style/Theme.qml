pragma Singleton
import QtQuick
import Orvane

/// The look of every view by name: text styles, semantic colours, materials and motion, in light and dark.
/// Lengths are points, which are device-independent pixels; views add only the measures that are their own.
QtObject {
    id: theme

    /// "light", "dark" or "system", which follows the desktop as it changes: what it wishes, or else its palette.
    property string appearance: "system"
    property Desktop desktop: null
    readonly property bool isDark: appearance === "system" ? isDesktopDark : appearance === "dark"
    readonly property bool isDesktopDark: desktop && desktop.appearance !== Desktop.LikeThePalette
                                          ? desktop.appearance === Desktop.Dark
                                          : systemPalette.window.hslLightness < 0.5
    readonly property SystemPalette systemPalette: SystemPalette {}

    /// Whether nothing that must be seen may be faint.
    property bool hasHighContrast: desktop?.hasHighContrast ?? false

    /// How much larger text is than usual, with the symbols that go with it and the controls that hold a line of it.
    property real textScale: desktop?.textScale ?? 1

    // Text styles, in the application's font. Their sizes are as named at the usual size of text.
    readonly property font largeTitle: style(26, Font.Normal, -0.5)
    readonly property font title: style(22, Font.Normal, -0.4)
    readonly property font title2: style(17, Font.Normal, -0.3)
    readonly property font title3: style(15, Font.Normal, -0.2)
    readonly property font headline: style(13, Font.Bold, 0)
    readonly property font body: style(13, Font.Normal, 0)
    readonly property font callout: style(12, Font.Normal, 0)
    readonly property font subheadline: style(11, Font.Normal, 0)
    readonly property font caption: style(10, Font.Normal, 0)
    readonly property font caption2: style(10, Font.Medium, 0)
    readonly property font monospacedCallout: Qt.font({ family: monospacedFamily, pixelSize: callout.pixelSize })
    readonly property string monospacedFamily: Qt.platform.os === "osx" ? "Menlo" : "monospace"
    readonly property font applicationFont: metrics.font
    readonly property FontMetrics metrics: FontMetrics {}

    readonly property color label: shade("#d9000000", "#deffffff", "#000000", "#ffffff")
    readonly property color secondary: shade("#80000000", "#8cffffff", "#b3000000", "#ccffffff")
    readonly property color tertiary: shade("#42000000", "#42ffffff", "#99000000", "#99ffffff")
    readonly property color accentText: "#ffffff"

    readonly property color window: isDark ? "#1e1e1e" : "#ffffff"
    readonly property color sidebar: isDark ? "#2a2a2c" : "#f3f3f5"
    readonly property color bar: isDark ? "#262628" : "#f6f6f8"
    readonly property color sheet: isDark ? "#2b2b2d" : "#f6f6f7"
    readonly property color separator: shade("#1a000000", "#1cffffff", "#8c000000", "#8cffffff")
    readonly property color veil: isDark ? "#66000000" : "#2e000000"

    readonly property color accent: shade("#007aff", "#0a84ff", "#0040dd", "#0a5cd6")
    readonly property color blue: shade("#007aff", "#0a84ff", "#0040dd", "#409cff")
    readonly property color orange: shade("#ff9500", "#ff9f0a", "#c93400", "#ffb340")
    readonly property color purple: shade("#af52de", "#bf5af2", "#8944ab", "#da8fff")
    readonly property color green: shade("#28cd41", "#32d74b", "#248a3d", "#30db5b")
    readonly property color red: shade("#ff3b30", "#ff453a", "#d70015", "#ff6961")

    readonly property color control: shade("#ffffff", "#59595c", "#ffffff", "#242426")
    readonly property color controlLine: shade("#1f000000", "#0fffffff", "#99000000", "#99ffffff")
    readonly property color controlShadow: isDark ? "#26000000" : "#0d000000"
    readonly property color field: shade("#ffffff", "#3a3a3c", "#ffffff", "#242426")
    readonly property color inactiveSelection: isDark ? "#464648" : "#dcdcde"
    readonly property color focusRing: hasHighContrast ? blue : faded(accent, 0.5)
    /// Of what cannot be used now.
    readonly property real disabledOpacity: hasHighContrast ? 0.6 : 0.4

    readonly property url programIcon: Qt.resolvedUrl("Icons/orvane.svg")

    /// Whether the user asked for less motion; then nothing slides or fades, it is simply there.
    property bool reducesMotion: desktop?.reducesMotion ?? false
    readonly property int listDuration: reducesMotion ? 0 : 450
    readonly property int sheetDuration: reducesMotion ? 0 : 200

    /// The same text style in another weight, such as `Theme.weighted(Theme.title2, Font.Bold)`.
    function weighted(base: font, weight: int): font {
        return face(base.pixelSize, weight, base.letterSpacing)
    }

    function style(usualSize: int, weight: int, letterSpacing: real): font {
        return face(scaled(usualSize), weight, letterSpacing)
    }

    function face(pixelSize: int, weight: int, letterSpacing: real): font {
        return Qt.font({ family: applicationFont.family, hintingPreference: applicationFont.hintingPreference,
                         pixelSize: pixelSize, weight: weight, letterSpacing: letterSpacing })
    }

    /// A measure that grows with text, such as the height of a button, from what it usually is.
    function scaled(points: real): int {
        return Math.round(points * textScale)
    }

    /// The height of a line of text of a size, in points.
    function lineHeight(pixelSize: int): int {
        const heights = { 10: 13, 11: 14, 12: 15, 13: 16, 15: 20, 17: 22, 22: 26, 26: 32 }
        return heights[pixelSize] ?? Math.round(pixelSize * 1.25)
    }

    /// The side of a symbol that goes with text of a size, in points.
    function symbolSize(pixelSize: int): int {
        return pixelSize + 1
    }

    function shade(light: color, dark: color, strongLight: color, strongDark: color): color {
        return hasHighContrast ? (isDark ? strongDark : strongLight) : isDark ? dark : light
    }

    /// A colour at an opacity from 0 to 1.
    function faded(base: color, opacity: real): color {
        return Qt.rgba(base.r, base.g, base.b, base.a * opacity)
    }

    /// The faintest fill, of cards, boxes and notices, at the opacity that a view states; never quite invisible.
    function quaternaryFill(opacity: real): color {
        const white = isDark ? 1 : 0
        return Qt.rgba(white, white, white, Math.max(hasHighContrast ? 0.1 : 0.05, 0.1 * opacity))
    }
}
