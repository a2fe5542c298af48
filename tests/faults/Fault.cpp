// SPDX-FileCopyrightText: 2026 The Marvola authors
// SPDX-License-Identifier: MIT

#include "Fault.h"

#include <cerrno>
#include <cstring>

namespace {

const char *text(Fault::Kind kind)
{
    switch (kind) {
    case Fault::Kind::KilledBefore:
        return "killed before";
    case Fault::Kind::KilledHalfway:
        return "killed halfway through";
    case Fault::Kind::KilledAfter:
        return "killed after";
    case Fault::Kind::Error:
        return "error at";
    case Fault::Kind::ErrorHalfway:
        return "error halfway through";
    case Fault::Kind::ErrorsForAWhile:
        return "errors for a while from";
    case Fault::Kind::ErrorsFromHere:
        return "errors from";
    }
    return "";
}

} // namespace

bool Fault::isDeath() const
{
    return kind == Kind::KilledBefore || kind == Kind::KilledHalfway || kind == Kind::KilledAfter;
}

bool Fault::isErrorAt(int number) const
{
    switch (kind) {
    case Kind::Error:
        return number == call;
    case Kind::ErrorsForAWhile:
        return number >= call && number < call + While;
    case Kind::ErrorsFromHere:
        return number >= call;
    default:
        return false;
    }
}

std::vector<Fault> faultsAt(int call, CallKind kind)
{
    std::vector<Fault> faults;
    if (changesFiles(kind))
        faults = {{call, Fault::Kind::KilledBefore, 0}, {call, Fault::Kind::KilledAfter, 0}};
    if (kind == CallKind::Write)
        faults.push_back({call, Fault::Kind::KilledHalfway, 0});
    for (const int error : errorsOf(kind)) {
        faults.push_back({call, Fault::Kind::Error, error});
        faults.push_back({call, Fault::Kind::ErrorsForAWhile, error});
        faults.push_back({call, Fault::Kind::ErrorsFromHere, error});
        if (kind == CallKind::Write)
            faults.push_back({call, Fault::Kind::ErrorHalfway, error});
    }
    return faults;
}

std::string describe(const Fault &fault, const FileCall &call)
{
    std::string line = text(fault.kind);
    line += " call " + std::to_string(fault.call) + ", " + call.name.toStdString() + " " + call.path.toStdString();
    if (fault.error != 0)
        line += std::string(": ") + ::strerrorname_np(fault.error);
    return line;
}
