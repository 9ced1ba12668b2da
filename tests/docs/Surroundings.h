/* What the examples in the public headers take for granted of the application they stand in. */
#ifdef __cplusplus
#include <cassert>
#include <fstream>
#include <iostream>
#include <memory>
#include <string>

#include "quillon/ConsentSDK.h"
#include "quillon/LinuxPlatform.h"
#include "quillon/Testing.h"

struct WebView {
  void addScriptAtDocumentStart(std::string script);
};

extern quillon::ConsentSDK& sdk;
extern const quillon::ConsentSDKOptions options;
extern const std::string configuration;
extern quillon::testing::Device device;
constexpr int statistics = 2;
void showBanner();
void startCounting();
void stopCounting();
#define SURROUNDINGS const std::shared_ptr<WebView>& view

#ifdef QT_CORE_LIB
#include <QGuiApplication>
#include <QQmlApplicationEngine>

#include "quillon/QtQuick.h"

extern int argc;
extern char** argv;
#endif
#else
#include <stdio.h>
#define SURROUNDINGS void
void start_measuring(void);
#endif
