#pragma once

#include <memory>

class LumoObject;
class LumoPaintConfig;

/// Pictures of objects with isCachedAsPicture, kept between paint passes for one scale, in at most
/// 64 MB; those that were not painted longest go first.
class LumoPictureCache {
public:
    LumoPictureCache();
    ~LumoPictureCache();
    LumoPictureCache(const LumoPictureCache&) = delete;
    LumoPictureCache& operator=(const LumoPictureCache&) = delete;

    /// Paints @p object from its picture, making that first if there is none for this scale. False
    /// if a picture would not pay (too large): the caller paints the object itself.
    bool paint(LumoObject* object, LumoPaintConfig* config);
    /// @p object changed or goes.
    void drop(const LumoObject* object);
    void clear();
    /// For tests: kept pictures, and bytes.
    int count() const;
    long bytes() const;

private:
    struct State;
    const std::unique_ptr<State> m_state;
};
