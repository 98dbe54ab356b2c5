#pragma once
// What must hold in the store whatever the users did: each invariant is a
// query that counts the rows breaking it. The robustness run checks them
// after every screen; later areas add theirs here.
#include <QList>
#include <QString>
#include <QStringList>

namespace tq::test {

struct Invariant {
    QString name;
    QString sql;   // SELECT COUNT(*) of the rows that break it
};

const QList<Invariant>& storeInvariants();

// PRAGMA integrity_check and every invariant on the open store: one line for
// each that fails (empty when all hold).
QStringList brokenInvariants();

}  // namespace tq::test
