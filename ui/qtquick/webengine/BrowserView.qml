import QtQuick
import QtWebEngine
import Quillon.Consent
import Quillon.Consent.WebEngine

// A browser that only displays pages: no windows, dialogs, files, permissions or storage.
WebEngineView {
    id: view

    required property WebEngineSurface surface

    function evaluate(script, number) {
        view.runJavaScript(script, WebEngineScript.ApplicationWorld, result => { // qmllint disable
            if (view.surface)
                view.surface.scriptEnded(number, typeof result === "string" ? result : "")
        })
    }

    zoomFactor: Style.textScale
    profile: WebEngineProfile {
        offTheRecord: true
        httpCacheType: WebEngineProfile.MemoryHttpCache
        persistentCookiesPolicy: WebEngineProfile.NoPersistentCookies
        spellCheckEnabled: false
        onDownloadRequested: download => download.cancel()
    }
    // Pages can neither see nor forge it.
    readonly property string shownMessage: "shown " + Math.random()

    // Qt 6.4 uses "runOnSubframes" here, contrary to its documentation; later versions use the other name.
    Component.onCompleted: userScripts.collection = [ // qmllint disable
        {
            // The engine confuses the end of a refused navigation with that of the next one; this event is reliable.
            name: "shown",
            sourceCode: "addEventListener('pageshow', () => console.info('" + shownMessage + "'))",
            injectionPoint: WebEngineScript.DocumentCreation,
            worldId: WebEngineScript.ApplicationWorld
        },
        {
            // WebRTC connections bypass all filters.
            name: "withheld",
            sourceCode: "delete window.RTCPeerConnection; delete window.webkitRTCPeerConnection; delete window.WebTransport",
            injectionPoint: WebEngineScript.DocumentCreation,
            worldId: WebEngineScript.MainWorld,
            runOnSubframes: true,
            runsOnSubFrames: true
        },
        {
            // The scripting counterpart of the Sec-GPC header.
            name: "globalPrivacyControl",
            sourceCode: "Object.defineProperty(Navigator.prototype, 'globalPrivacyControl', {get: () => true, enumerable: true, configurable: false})",
            injectionPoint: WebEngineScript.DocumentCreation,
            worldId: WebEngineScript.MainWorld,
            runOnSubframes: true,
            runsOnSubFrames: true
        },
        {
            // Tells our own page the theme in use here; the engine may follow another one.
            name: "surroundings",
            sourceCode: "if (location.protocol === 'data:') addEventListener('DOMContentLoaded', () => "
                + "document.documentElement.dataset.surroundings = '" + (Style.isDark ? "dark" : "light") + "')",
            injectionPoint: WebEngineScript.DocumentCreation,
            worldId: WebEngineScript.ApplicationWorld
        }
    ]
    settings {
        javascriptEnabled: true
        javascriptCanOpenWindows: false
        javascriptCanAccessClipboard: false
        javascriptCanPaste: false
        allowWindowActivationFromJavaScript: false
        localContentCanAccessFileUrls: false
        localContentCanAccessRemoteUrls: false
        allowRunningInsecureContent: false
        allowGeolocationOnInsecureOrigins: false
        // Tested, and refused, like any other URL.
        unknownUrlSchemePolicy: WebEngineSettings.AllowUnknownUrlSchemesFromUserInteraction
        pluginsEnabled: false
        pdfViewerEnabled: false
        fullScreenSupportEnabled: false
        screenCaptureEnabled: false
        webRTCPublicInterfacesOnly: true
        dnsPrefetchEnabled: false
        hyperlinkAuditingEnabled: false
        autoLoadIconsForPage: false
        touchIconsEnabled: false
        navigateOnDropEnabled: false
        playbackRequiresUserGesture: true
        // After a failed navigation the previous page stays.
        errorPageEnabled: false
        focusOnNavigationEnabled: false
    }

    // The linter does not resolve the base class.
    onUrlChanged: surface.changed() // qmllint disable
    onLoadProgressChanged: surface.changed() // qmllint disable
    onCanGoBackChanged: surface.changed() // qmllint disable
    onCanGoForwardChanged: surface.changed() // qmllint disable

    onNavigationRequested: request => {
        if (surface.allowsNavigation(request.url, request.isMainFrame))
            request.accept()
        else
            request.reject()
    }
    // Never opens a window: an allowed URL opens in this view.
    onNewWindowRequested: request => surface.windowWanted(request.requestedUrl)
    onLoadingChanged: info => {
        const aborted = -3
        if (info.status === WebEngineView.LoadStartedStatus)
            surface.navigationStarted()
        else if (info.status === WebEngineView.LoadSucceededStatus)
            surface.navigationSucceeded()
        else
            surface.navigationFailed(info.status === WebEngineView.LoadStoppedStatus || info.errorCode === aborted ? "" : info.errorString)
    }
    onJavaScriptConsoleMessage: (level, message) => {
        if (message === shownMessage)
            surface.navigationSucceeded()
    }
    onRenderProcessTerminated: surface.pageFailed("The page's process has ended")

    onFeaturePermissionRequested: (origin, feature) => grantFeaturePermission(origin, feature, false)
    onQuotaRequested: request => request.reject()
    onFileSystemAccessRequested: request => request.reject()
    onRegisterProtocolHandlerRequested: request => request.reject()
    onFullScreenRequested: request => request.reject()
    onCertificateError: error => error.rejectCertificate()
    onSelectClientCertificate: selection => selection.selectNone()
    onAuthenticationDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onJavaScriptDialogRequested: request => {
        request.accepted = true
        // Pages must not prevent the user from leaving.
        if (request.type === JavaScriptDialogRequest.DialogTypeBeforeUnload)
            request.dialogAccept()
        else
            request.dialogReject()
    }
    onColorDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onFileDialogRequested: request => {
        request.accepted = true
        request.dialogReject()
    }
    onContextMenuRequested: request => request.accepted = true
    onTouchSelectionMenuRequested: request => request.accepted = true
    onTooltipRequested: request => request.accepted = true
}
