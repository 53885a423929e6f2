#pragma once

namespace zelmor::domain::api {

// A store that checks its tables once its dependencies are set. false means the
// store can't work on this database; it has reported why through its error signal.
class IInitializing
{
public:
    virtual ~IInitializing();

    virtual bool initialize() = 0;
};

} // namespace zelmor::domain::api
