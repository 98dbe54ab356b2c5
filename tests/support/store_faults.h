#pragma once
// A store that fails on demand, as a full disk or a lost network drive
// would: from a given write on, every INSERT, UPDATE and DELETE on any table
// of the laboratory is refused, until it heals. Made with temporary
// triggers on amb1's connection, so the store file itself is never touched.
namespace tq::test {

class StoreFaults {
public:
    // Puts the triggers on the open store (healthy at first).
    StoreFaults();
    // After `writes` more writes succeed, every write fails.
    void failAfter(int writes);
    void heal();
    bool failing() const { return m_failing; }

private:
    bool m_failing = false;
};

}  // namespace tq::test
