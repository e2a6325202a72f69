// The listener's head as a head tracker reports it, and its way from the
// tracker's thread to the audio thread.
//
// Axes as the B-format's: x to the front, y to the left, z up. An
// orientation is the rotation that turns the head from looking straight
// ahead to where it looks, as a unit quaternion. Angles follow the field's
// own controls: yaw to the left positive (as Rotate), pitch with the nose up
// positive (as Tumble lifts the front), roll with the left ear up positive
// (as Tilt lifts the left).
#pragma once

#include <atomic>

namespace sorvane {

struct Quaternion {
    double w = 1.0, x = 0.0, y = 0.0, z = 0.0;
    bool operator==(const Quaternion&) const = default;
};

Quaternion operator*(const Quaternion& a, const Quaternion& b);
Quaternion conjugate(const Quaternion& q);
// Yaw, then pitch, then roll, in degrees, each about the head's own axes.
Quaternion orientationOfYawPitchRoll(double yaw, double pitch, double roll);
// `q` scaled to unit length; false when it has none to scale (zero or not finite).
bool normalise(Quaternion& q);
// From `a` (t = 0) to `b` (t = 1) along the shorter arc at an even pace.
Quaternion slerp(const Quaternion& a, Quaternion b, double t);

// The matrix that turns the field against the head: a source the world
// holds at direction v is heard at m v, relative to the head (row-major).
struct FieldTurn {
    double m[3][3];
};
FieldTurn counterTurnOf(const Quaternion& head);

// The latest orientation, from one writer thread to one reader, each side
// waiting on nothing: three slots change hands through one atomic index, so
// the reader always finds a whole orientation, the newest one posted.
class OrientationMailbox {
public:
    // The writer's side.
    void post(const Quaternion& q);
    // The reader's side: true and the newest orientation if one came since the last take.
    bool take(Quaternion& q);

private:
    static constexpr int kFresh = 4;  // beside the slot's index: not yet taken
    Quaternion slots[3];
    std::atomic<int> middle{1};
    int back = 0;   // the writer's
    int front = 2;  // the reader's
};

}  // namespace sorvane
