#pragma once
// A store that fails on demand, as a full disk would: every write refused until it heals.
namespace tq::test {

class StoreFaults {
public:
    StoreFaults();   // on the open store, healthy at first
    void failAfter(int writes);   // after `writes` more writes, every write fails
    void heal();
    bool failing() const { return m_failing; }

private:
    bool m_failing = false;
};

}  // namespace tq::test
