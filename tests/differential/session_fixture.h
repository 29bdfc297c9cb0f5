#pragma once

#include <memory>

#include "differential/server_session.h"
#include "live/live_server.h"

namespace QB::Test {

/// Tests on a server that holds the tables of tables.sql.
class OnTables : public OnServer {
protected:
    void SetUp() override {
        OnServer::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session = std::make_unique<ServerSession>(server(), GetParam().family);
        ASSERT_EQ(session->error(), "");
    }

    std::unique_ptr<ServerSession> session;
};

}  // namespace QB::Test
