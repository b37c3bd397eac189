#pragma once

#include <QtCore/QMap>
#include <QtCore/QProcess>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusVirtualObject>

namespace orvane::test {

/// A message bus of the test's own, which nobody else is on.
class MessageBus {
  public:
    MessageBus();
    ~MessageBus();

    const QString& address() const { return address_; }

  private:
    QProcess daemon_;
    QString address_;
};

/// What answers for the desktop's settings on a bus, in the place of its portal.
class StandInPortal : public QDBusVirtualObject {
  public:
    explicit StandInPortal(const QString& busAddress);
    ~StandInPortal() override;

    /// Takes the portal's name, and gives it back.
    void come();
    void go();
    /// Changes a setting, and tells of it.
    void set(const QString& settings, const QString& key, const QVariant& value);
    /// Tells of a change that there is none of.
    void lie(const QString& settings, const QString& key, const QVariant& value);
    /// Answers with something that is no settings.
    void answerNonsense() { answersNonsense_ = true; }

    int questions() const { return questions_; }

    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& question, const QDBusConnection& bus) override;

  private:
    QString name_;
    QDBusConnection bus_;
    QMap<QString, QVariantMap> settings_;
    bool answersNonsense_ = false;
    int questions_ = 0;
};

}  // namespace orvane::test
