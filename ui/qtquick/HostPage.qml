import QtQuick
import Quillon.Consent

// For an application's own page. While a screen of the SDK lies over the window, nothing of the page can be used, and
// assistive technology does not meet it.
AccessibleScope {
    enabled: !isCovered
    Accessible.role: Accessible.Grouping
}
