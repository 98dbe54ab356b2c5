// The transactions of amb1: a save's begin, commit and rollback on
// Connection1 (nested saves as savepoints), the Transaction that rolls back
// a save that did not finish, and the error boundary's rollback.
#include "foundation/data/amb1_p.h"

#include "foundation/base/apperror.h"
#include "foundation/data/dialect.h"

namespace tq {

// Nested saves share the outer transaction through savepoints, so an inner
// failure can undo its own rows and the outer save decides on the rest.
void Amb1::begin()
{
    QSqlDatabase db = currentDb();
    if (p->depth == 0) {
        // A save takes the store for writing at once: two programs on one
        // store then wait for each other (the busy timeout) instead of both
        // reading a free number and one failing when it writes it.
        // On the server one lock, held to the end of the transaction, does
        // what the embedded store's immediate transaction does.
        QSqlQuery q(db);
        const bool server = p->engine == Engine::Server;
        if (!q.exec(server ? QStringLiteral("BEGIN") : QStringLiteral("BEGIN IMMEDIATE")))
            throw DbError(QStringLiteral("No se pudo iniciar la transacción. %1")
                              .arg(storeFailure(q.lastError())),
                          q.lastError().text());
        if (server && !q.exec(QStringLiteral("SELECT pg_advisory_xact_lock(%1)")
                                  .arg(dialect::kSaveLock))) {
            const QSqlError why = q.lastError();
            db.rollback();
            throw DbError(QStringLiteral("No se pudo iniciar la transacción. %1")
                              .arg(storeFailure(why)),
                          why.text());
        }
    } else {
        const QString sql = QStringLiteral("SAVEPOINT tq_sp%1").arg(p->depth);
        QSqlQuery q(db);
        if (!q.exec(sql))
            throw DbError(QStringLiteral("No se pudo iniciar la transacción. %1")
                              .arg(storeFailure(q.lastError())),
                          q.lastError().text(), sql);
    }
    ++p->depth;
}

void Amb1::commit()
{
    if (p->depth <= 0)
        throw AppError(QStringLiteral("No hay una transacción abierta que confirmar."));
    QSqlDatabase db = currentDb();
    if (p->depth == 1) {
        if (!db.commit()) {
            const QSqlError why = db.lastError();
            db.rollback();
            p->depth = 0;
            throw DbError(QStringLiteral("No se pudieron guardar los cambios. %1")
                              .arg(storeFailure(why)),
                          why.text());
        }
    } else {
        const QString sql = QStringLiteral("RELEASE SAVEPOINT tq_sp%1").arg(p->depth - 1);
        QSqlQuery q(db);
        if (!q.exec(sql)) {
            const QSqlError why = q.lastError();
            rollbackOpenTransaction();
            throw DbError(QStringLiteral("No se pudieron guardar los cambios. %1")
                              .arg(storeFailure(why)),
                          why.text(), sql);
        }
    }
    --p->depth;
}

void Amb1::rollback()
{
    if (p->depth <= 0)
        return;
    if (!isOpen()) {
        p->depth = 0;
        return;
    }
    if (p->depth == 1) {
        p->db.rollback();
    } else {
        const int level = p->depth - 1;
        QSqlQuery q(p->db);
        if (!q.exec(QStringLiteral("ROLLBACK TO SAVEPOINT tq_sp%1").arg(level))
            || !q.exec(QStringLiteral("RELEASE SAVEPOINT tq_sp%1").arg(level))) {
            // The savepoint is gone; undo the whole save rather than keep half.
            p->db.rollback();
            p->depth = 0;
            return;
        }
    }
    --p->depth;
}

bool Amb1::inTransaction() const { return p->depth > 0; }

int Amb1::transactionDepth() const { return p->depth; }

Transaction::Transaction()
{
    amb1().begin();
}

Transaction::~Transaction()
{
    if (m_done)
        return;
    try {
        if (amb1().inTransaction())
            amb1().rollback();
    } catch (...) {
        // A destructor runs while an error is already on its way to the user.
    }
}

void Transaction::commit()
{
    if (m_done)
        return;
    m_done = true;
    amb1().commit();
}

void rollbackOpenTransaction(int depth)
{
    Amb1& a = amb1();
    while (a.transactionDepth() > depth)
        a.rollback();
}

}  // namespace tq
