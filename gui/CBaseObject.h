// Reference counting shared by views, bitmaps and the frame: an object is
// born with one reference, remember() adds one, forget() drops one and the
// object deletes itself when none is left.
#pragma once

#include <cstdint>

class CBaseObject {
public:
    CBaseObject() = default;
    virtual ~CBaseObject() = default;
    CBaseObject(const CBaseObject&) = delete;
    CBaseObject& operator=(const CBaseObject&) = delete;

    virtual void remember() { ++nbReference; }
    virtual void forget() {
        if (--nbReference <= 0) delete this;
    }
    int32_t getNbReference() const { return nbReference; }

protected:
    int32_t nbReference = 1;
};
