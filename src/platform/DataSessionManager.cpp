// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include <marvola/DataSessionManager.h>

#include <utility>

namespace {

constexpr int NoLink = -1;

std::function<DataSessionManager *()> &factory()
{
    static std::function<DataSessionManager *()> function;
    return function;
}

} // namespace

DataSessionManager::DataSessionManager(QObject *parent, const char *name) : QObject(parent)
{
    if (name)
        setObjectName(QString::fromUtf8(name));
}

DataSessionManager::~DataSessionManager() = default;

void DataSessionManager::init(bool)
{
}

int DataSessionManager::openLink(const QString &)
{
    return NoLink;
}

void DataSessionManager::closeLink(int)
{
}

int DataSessionManager::getDeviceInfo(int, QString &, unsigned long *)
{
    return -1;
}

void DataSessionManager::setFactory(std::function<DataSessionManager *()> newFactory)
{
    factory() = std::move(newFactory);
}

DataSessionManager *DataSessionManager::create()
{
    // A copy, because the function may name another one while it runs.
    const auto make = factory();
    DataSessionManager *made = make ? make() : nullptr;
    return made ? made : new DataSessionManager;
}
