#include "store_faults.h"

#include "foundation/data/amb1.h"
#include "foundation/data/schema.h"

namespace tq::test {

// The text the store fails with, as the driver hands it on.
static const QString kFault = QStringLiteral("fallo provocado de la base de datos");

// `quedan`: writes left before the store fails; NULL while it is healthy. A
// refused write is undone with its statement, so the count stays below one.
StoreFaults::StoreFaults()
{
    const bool server = amb1().engine() == Engine::Server;
    const QString count = QStringLiteral("UPDATE falla SET quedan = quedan - 1 WHERE quedan IS NOT NULL; ");
    amb1().execute(server ? "CREATE TABLE IF NOT EXISTS falla (quedan INTEGER)"
                          : "CREATE TEMP TABLE falla (quedan INTEGER)");
    amb1().execute(QStringLiteral("DELETE FROM falla"));
    amb1().execute(QStringLiteral("INSERT INTO falla (quedan) VALUES (NULL)"));
    if (server)
        amb1().execute(QStringLiteral("CREATE OR REPLACE FUNCTION falla() RETURNS trigger LANGUAGE plpgsql "
                                      "AS 'BEGIN %1IF (SELECT quedan FROM falla) < 0 THEN "
                                      "RAISE EXCEPTION ''%2''; END IF; RETURN COALESCE(NEW, OLD); END'")
                           .arg(count, kFault));
    for (const QString& table : schema::tableNames()) {
        if (server) {
            amb1().execute(QStringLiteral("CREATE TRIGGER falla BEFORE INSERT OR UPDATE OR DELETE "
                                          "ON %1 FOR EACH ROW EXECUTE FUNCTION falla()").arg(table));
            continue;
        }
        for (const char* op : {"INSERT", "UPDATE", "DELETE"})
            amb1().execute(QStringLiteral("CREATE TEMP TRIGGER \"falla_%1_%2\" BEFORE %2 ON main.\"%1\" "
                                          "BEGIN %3SELECT RAISE(ABORT, '%4') "
                                          "WHERE (SELECT quedan FROM falla) < 0; END")
                               .arg(table, QLatin1String(op), count, kFault));
    }
}

void StoreFaults::failAfter(int writes)
{
    amb1().execute(QStringLiteral("UPDATE falla SET quedan = ?"), {writes});
    m_failing = true;
}

void StoreFaults::heal()
{
    amb1().execute(QStringLiteral("UPDATE falla SET quedan = NULL"));
    m_failing = false;
}

}  // namespace tq::test
