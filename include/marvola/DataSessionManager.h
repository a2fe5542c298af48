// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#ifndef MARVOLA_DATASESSIONMANAGER_H
#define MARVOLA_DATASESSIONMANAGER_H

#include <marvola/Export.h>

#include <QtCore/QObject>
#include <QtCore/QString>

#include <functional>

/// A description of one packet-data link.
struct LinkInfo
{
    QString profileName;   ///< the network profile that the link was opened with
    QString interfaceName; ///< the network interface that carries it; empty while not known
};

/// Opens and closes packet-data links. The base class is a working "no link service": openLink() always gives -1.
///
/// A device's link service derives from this class and is named with setFactory(); the library makes its own instance
/// with create() and owns it. All calls come from the thread of the library object, and the signals must be emitted on
/// that thread.
class MARVOLA_EXPORT DataSessionManager : public QObject
{
    Q_OBJECT

public:
    /// A manager with the object name \a name, or none.
    explicit DataSessionManager(QObject *parent = nullptr, const char *name = nullptr);
    ~DataSessionManager() override;

    /// Called once after construction; the library passes false.
    virtual void init(bool flag);

    /// Starts opening a link with the network profile \a profileName and returns at once.
    /// \return the id of the link, or a negative number when none can be opened. After an id that is not negative,
    /// exactly one of connected() and openFailed() follows.
    virtual int openLink(const QString &profileName);

    /// Closes the link \a id. An id that was never given, or is closed already, is ignored.
    virtual void closeLink(int id);

    /// Gives the network interface of the open link \a id, and in \a value, unless it is null, a further number of the
    /// link service's own.
    /// \return 0 on success; anything else when the link or its interface is not known, and nothing is changed.
    virtual int getDeviceInfo(int id, QString &interfaceName, unsigned long *value);

    /// Names the kind of manager that create() makes from now on. An empty function goes back to this base class.
    static void setFactory(std::function<DataSessionManager *()> factory);

    /// Makes a manager of the kind that was named; never null. The caller owns it.
    static DataSessionManager *create();

Q_SIGNALS:
    /// The link \a id is open.
    void connected(int id, LinkInfo &info);

    /// The link \a id could not be opened; the two numbers are the link service's own error codes.
    void openFailed(int id, unsigned short error, unsigned short detail);

    /// The link \a id, which was open, is no more.
    void broken(int id, LinkInfo &info);
};

#endif
