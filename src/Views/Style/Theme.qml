pragma Singleton
import QtQuick

/// The look of every view by name: text styles, semantic colours, materials and motion, in light and dark.
/// Lengths are points, which are device-independent pixels; views add only the measures that are their own.
QtObject {
    id: theme

    /// "light", "dark" or "system", which follows the desktop's palette as it changes.
    property string appearance: "system"
    readonly property bool isDark: appearance === "dark"
                                   || (appearance === "system" && systemPalette.window.hslLightness < 0.5)
    readonly property SystemPalette systemPalette: SystemPalette {}

    // Text styles, in the application's font.
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

    readonly property color label: isDark ? "#deffffff" : "#d9000000"
    readonly property color secondary: isDark ? "#8cffffff" : "#80000000"
    readonly property color tertiary: isDark ? "#42ffffff" : "#42000000"
    readonly property color accentText: "#ffffff"

    readonly property color window: isDark ? "#1e1e1e" : "#ffffff"
    readonly property color sidebar: isDark ? "#2a2a2c" : "#f3f3f5"
    readonly property color bar: isDark ? "#262628" : "#f6f6f8"
    readonly property color sheet: isDark ? "#2b2b2d" : "#f6f6f7"
    readonly property color separator: isDark ? "#1cffffff" : "#1a000000"
    readonly property color veil: isDark ? "#66000000" : "#2e000000"

    readonly property color accent: blue
    readonly property color blue: isDark ? "#0a84ff" : "#007aff"
    readonly property color orange: isDark ? "#ff9f0a" : "#ff9500"
    readonly property color purple: isDark ? "#bf5af2" : "#af52de"
    readonly property color green: isDark ? "#32d74b" : "#28cd41"
    readonly property color red: isDark ? "#ff453a" : "#ff3b30"

    readonly property color control: isDark ? "#59595c" : "#ffffff"
    readonly property color controlLine: isDark ? "#0fffffff" : "#1f000000"
    readonly property color controlShadow: isDark ? "#26000000" : "#0d000000"
    readonly property color field: isDark ? "#3a3a3c" : "#ffffff"
    readonly property color inactiveSelection: isDark ? "#464648" : "#dcdcde"
    readonly property color focusRing: faded(accent, 0.5)

    readonly property url programIcon: Qt.resolvedUrl("Icons/orvane.svg")

    /// Whether the user asked for less motion; then nothing slides or fades, it is simply there.
    property bool reducesMotion: false
    readonly property int listDuration: reducesMotion ? 0 : 450
    readonly property int sheetDuration: reducesMotion ? 0 : 200

    /// The same text style in another weight, such as `Theme.weighted(Theme.title2, Font.Bold)`.
    function weighted(base: font, weight: int): font {
        return style(base.pixelSize, weight, base.letterSpacing)
    }

    function style(pixelSize: int, weight: int, letterSpacing: real): font {
        return Qt.font({ family: applicationFont.family, hintingPreference: applicationFont.hintingPreference,
                         pixelSize: pixelSize, weight: weight, letterSpacing: letterSpacing })
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

    /// A colour at an opacity from 0 to 1.
    function faded(base: color, opacity: real): color {
        return Qt.rgba(base.r, base.g, base.b, base.a * opacity)
    }

    /// The faintest fill, of cards, boxes and notices, at the opacity that a view states; never quite invisible.
    function quaternaryFill(opacity: real): color {
        const white = isDark ? 1 : 0
        return Qt.rgba(white, white, white, Math.max(0.05, 0.1 * opacity))
    }
}
