#pragma once

#include <QStringView>

/// The names of what a player and its item report changes of.
namespace KeyPath {
/// A player's status, a BackendPlayer::Status.
inline constexpr QStringView status = u"status";
/// Whether an item has enough to be played through.
inline constexpr QStringView playbackLikelyToKeepUp = u"playbackLikelyToKeepUp";
/// The time ranges that an item has loaded: a QVariantList of BackendItem::TimeRange.
inline constexpr QStringView loadedTimeRanges = u"loadedTimeRanges";
/// An item has played all that it had.
inline constexpr QStringView playbackBufferEmpty = u"playbackBufferEmpty";
/// An item can hold no more.
inline constexpr QStringView playbackBufferFull = u"playbackBufferFull";
} // namespace KeyPath
