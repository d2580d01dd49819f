// A failure that a test orders: the doors in memory ask before every call that can fail in real life.
#pragma once

namespace pelorin {

class Fault {
public:
    /// The `n`th call from now on fails (1 is the next one); 0 means none. Later calls work again.
    void FailCall(int n) { m_left = n; }
    /// To be asked once a call.
    [[nodiscard]] bool Strikes() { return m_left > 0 && --m_left == 0; }

private:
    int m_left = 0;
};

} // namespace pelorin
