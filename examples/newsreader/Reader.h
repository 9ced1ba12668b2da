// The application's state, as its pages see it.
#pragma once

#include <QObject>
#include <QTimer>

#include "quillon/ConsentSDK.h"

class Reader : public QObject {
  Q_OBJECT
  Q_PROPERTY(bool countsVisits READ countsVisits NOTIFY consentsChanged)
  Q_PROPERTY(bool personalises READ personalises NOTIFY consentsChanged)
  Q_PROPERTY(bool playsMedia READ playsMedia NOTIFY consentsChanged)

 public:
  explicit Reader(quillon::ConsentSDK& sdk);

  bool countsVisits() const { return allows(2); }
  bool personalises() const { return allows(3); }
  bool playsMedia() const { return allows(5); }

  Q_INVOKABLE void openPrivacySettings() { sdk_.presentPreferenceCenter(); }

 signals:
  void consentsChanged();

 private:
  bool allows(int purposeId) const { return sdk_.isAllowed(purposeId); }

  quillon::ConsentSDK& sdk_;
  QTimer refresh_;  // Asking costs next to nothing, so the pages simply ask again.
};
