#pragma once

#include <QtQml/qqmlregistration.h>
#include <QtCore/QObject>
#include <QtCore/QPointer>
#include <QtCore/QString>
#include <QtCore/QUrl>
#include <asio/any_io_executor.hpp>

#include "Platform/Bundle.h"
#include "Platform/Clock.h"

namespace orvane {

/// The About window: what the program says of itself and of its maker, and the copying of the maker's
/// address. On the main thread.
class AboutModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the program")

    Q_PROPERTY(QString versionText READ versionText CONSTANT)
    Q_PROPERTY(QString copyrightText READ copyrightText CONSTANT)
    Q_PROPERTY(QString makerName READ makerName CONSTANT)
    Q_PROPERTY(QString emailAddress READ emailAddress CONSTANT)
    Q_PROPERTY(QUrl emailURL READ emailURL CONSTANT)
    Q_PROPERTY(QUrl sourceCodeURL READ sourceCodeURL CONSTANT)
    Q_PROPERTY(QUrl professionalNetworkURL READ professionalNetworkURL CONSTANT)
    /// The address was copied a moment ago.
    Q_PROPERTY(bool isEmailCopied READ isEmailCopied NOTIFY isEmailCopiedChanged)

  public:
    /// `program` is the program's own bundle; the clock outlives the model and its pending confirmations.
    AboutModel(Bundle program, asio::any_io_executor mainExecutor, Clock& clock, QObject* parent = nullptr);

    QString versionText() const;
    QString copyrightText() const;
    QString makerName() const;
    QString emailAddress() const;
    QUrl emailURL() const;
    QUrl sourceCodeURL() const;
    QUrl professionalNetworkURL() const;
    bool isEmailCopied() const { return isEmailCopied_; }

    /// Puts the address on the clipboard and says so for two seconds. Copying again does not prolong that.
    Q_INVOKABLE void copyEmailAddress();
    /// Opens an address with the system's own browser or mail program.
    Q_INVOKABLE void open(const QUrl& url);

  signals:
    void isEmailCopiedChanged();

  private:
    static Task<void> endConfirmation(QPointer<AboutModel> about, Clock& clock);
    void setEmailCopied(bool isCopied);

    Bundle program_;
    asio::any_io_executor mainExecutor_;
    Clock& clock_;
    bool isEmailCopied_ = false;
};

}  // namespace orvane
