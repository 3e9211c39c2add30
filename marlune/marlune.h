#ifndef MARLUNE_MARLUNE_H_
#define MARLUNE_MARLUNE_H_

// The core as an app uses it: the three stages, what they need from the platform, and what they
// hand out.

#include "marlune/decompose/decomposer.h"
#include "marlune/decompose/decomposer_delegate.h"
#include "marlune/grammar/base/grammar_error.h"
#include "marlune/grammar/parser.h"
#include "marlune/platform/platform.h"
#include "marlune/platform/standard_error_log.h"
#include "marlune/playback/audio_session.h"
#include "marlune/playback/player.h"
#include "marlune/playback/queue_player.h"
#include "marlune/util/tq_utils.h"
#include "marlune/version.h"

#endif  // MARLUNE_MARLUNE_H_
