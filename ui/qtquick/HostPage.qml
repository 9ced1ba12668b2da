import QtQuick
import Quillon.Consent

// Wraps an application's own page. While a screen of the SDK covers the window, the page is disabled and hidden from
// assistive technology.
AccessibleScope {
    enabled: !isCovered
    Accessible.role: Accessible.Grouping
}
