#include "HeadOrientation.h"

#include <cmath>
#include <numbers>

namespace sorvane {

Quaternion operator*(const Quaternion& a, const Quaternion& b) {
    return {a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z, a.w * b.x + a.x * b.w + a.y * b.z - a.z * b.y,
            a.w * b.y - a.x * b.z + a.y * b.w + a.z * b.x, a.w * b.z + a.x * b.y - a.y * b.x + a.z * b.w};
}

Quaternion conjugate(const Quaternion& q) { return {q.w, -q.x, -q.y, -q.z}; }

Quaternion orientationOfYawPitchRoll(double yaw, double pitch, double roll) {
    const double half = std::numbers::pi / 360.0;  // degrees to half radians
    // Yaw about z; nose up is a turn about y against its right-handed sense; roll about x.
    const Quaternion turn{std::cos(yaw * half), 0.0, 0.0, std::sin(yaw * half)};
    const Quaternion lift{std::cos(pitch * half), 0.0, -std::sin(pitch * half), 0.0};
    const Quaternion lean{std::cos(roll * half), std::sin(roll * half), 0.0, 0.0};
    return turn * lift * lean;
}

bool normalise(Quaternion& q) {
    const double length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
    if (!(length > 1e-9) || !std::isfinite(length)) return false;
    q = {q.w / length, q.x / length, q.y / length, q.z / length};
    return true;
}

Quaternion slerp(const Quaternion& a, Quaternion b, double t) {
    double cosine = a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
    if (cosine < 0.0) {  // q and -q are the same orientation: take the nearer
        b = {-b.w, -b.x, -b.y, -b.z};
        cosine = -cosine;
    }
    double wa = 1.0 - t, wb = t;
    if (cosine < 0.9995) {
        const double angle = std::acos(cosine), sine = std::sin(angle);
        wa = std::sin((1.0 - t) * angle) / sine;
        wb = std::sin(t * angle) / sine;
    }
    Quaternion q{wa * a.w + wb * b.w, wa * a.x + wb * b.x, wa * a.y + wb * b.y, wa * a.z + wb * b.z};
    normalise(q);
    return q;
}

FieldTurn counterTurnOf(const Quaternion& q) {
    // The head's rotation matrix, transposed: world directions into the head's frame.
    const double w = q.w, x = q.x, y = q.y, z = q.z;
    return {{{1 - 2 * (y * y + z * z), 2 * (x * y + w * z), 2 * (x * z - w * y)},
             {2 * (x * y - w * z), 1 - 2 * (x * x + z * z), 2 * (y * z + w * x)},
             {2 * (x * z + w * y), 2 * (y * z - w * x), 1 - 2 * (x * x + y * y)}}};
}

void OrientationMailbox::post(const Quaternion& q) {
    slots[back] = q;
    back = middle.exchange(back | kFresh, std::memory_order_acq_rel) & ~kFresh;
}

bool OrientationMailbox::take(Quaternion& q) {
    if (!(middle.load(std::memory_order_acquire) & kFresh)) return false;
    front = middle.exchange(front, std::memory_order_acq_rel) & ~kFresh;
    q = slots[front];
    return true;
}

}  // namespace sorvane
