// Lengths in device-independent pixels.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <algorithm>

namespace quillon {

struct Metrics {
  Q_GADGET
  QML_ANONYMOUS
  // Minimum sizes of controls, and of answer buttons.
  Q_PROPERTY(int target MEMBER target)
  Q_PROPERTY(int answer MEMBER answer)
  // Icons and similar sizes, which scale with the text.
  Q_PROPERTY(int smallIcon MEMBER smallIcon)
  Q_PROPERTY(int icon MEMBER icon)
  Q_PROPERTY(int roundButton MEMBER roundButton)
  Q_PROPERTY(int switchWidth MEMBER switchWidth)
  Q_PROPERTY(int switchHeight MEMBER switchHeight)
  Q_PROPERTY(int logo MEMBER logo)
  Q_PROPERTY(int widestLogo MEMBER widestLogo)
  Q_PROPERTY(int sdkLogo MEMBER sdkLogo)
  // Spacing, from closely related to unrelated neighbours.
  Q_PROPERTY(int hairGap MEMBER hairGap)
  Q_PROPERTY(int smallGap MEMBER smallGap)
  Q_PROPERTY(int gap MEMBER gap)
  Q_PROPERTY(int largeGap MEMBER largeGap)
  // Corner radii.
  Q_PROPERTY(int smallRadius MEMBER smallRadius)
  Q_PROPERTY(int radius MEMBER radius)
  Q_PROPERTY(int cardRadius MEMBER cardRadius)
  Q_PROPERTY(int sheetRadius MEMBER sheetRadius)
  Q_PROPERTY(int pillRadius MEMBER pillRadius)
  Q_PROPERTY(int ringWidth MEMBER ringWidth)
  Q_PROPERTY(int scrollBar MEMBER scrollBar)
  Q_PROPERTY(int smallestThumb MEMBER smallestThumb)
  // Window widths: below the first two margins are smaller; from the last on lists have two columns.
  Q_PROPERTY(int tinyWindow MEMBER tinyWindow)
  Q_PROPERTY(int narrowWindow MEMBER narrowWindow)
  Q_PROPERTY(int wideWindow MEMBER wideWindow)
  // Maximum sizes of each kind of sheet, at a text scale of 1.
  Q_PROPERTY(int promptWidth MEMBER promptWidth)
  Q_PROPERTY(int dialogWidth MEMBER dialogWidth)
  Q_PROPERTY(int listWidth MEMBER listWidth)
  Q_PROPERTY(int columnsWidth MEMBER columnsWidth)
  Q_PROPERTY(int barWidth MEMBER barWidth)
  Q_PROPERTY(int pageWidth MEMBER pageWidth)
  Q_PROPERTY(int listHeight MEMBER listHeight)

 public:
  Metrics() = default;
  explicit Metrics(double textScale) {
    // Switches of three times their size would leave no room for text.
    const double growth = std::clamp(textScale, 1.0, 2.0);
    for (int* length : {&smallIcon, &icon, &roundButton, &switchWidth, &switchHeight, &logo, &widestLogo, &sdkLogo}) {
      *length = qRound(*length * growth);
    }
    target = std::max(target, roundButton);
  }

  int target = 44;
  int answer = 48;
  int smallIcon = 16;
  int icon = 20;
  int roundButton = 36;
  int switchWidth = 52;
  int switchHeight = 32;
  int logo = 40;
  int widestLogo = 160;
  int sdkLogo = 32;
  int hairGap = 4;
  int smallGap = 8;
  int gap = 12;
  int largeGap = 16;
  int smallRadius = 8;
  int radius = 12;
  int cardRadius = 16;
  int sheetRadius = 20;
  int pillRadius = 32;
  int ringWidth = 2;
  int scrollBar = 8;
  int smallestThumb = 32;
  int tinyWindow = 360;
  int narrowWindow = 600;
  int wideWindow = 1000;
  int promptWidth = 400;
  int dialogWidth = 480;
  int listWidth = 640;
  int columnsWidth = 1080;
  int barWidth = 720;
  int pageWidth = 960;
  int listHeight = 820;
};

}  // namespace quillon
