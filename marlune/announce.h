#ifndef MARLUNE_ANNOUNCE_H_
#define MARLUNE_ANNOUNCE_H_

// Announcers, and the core with them.

#include "marlune/announce/announcement.h"
#include "marlune/announce/announcement_end.h"
#include "marlune/announce/announcement_observer.h"
#include "marlune/announce/announcer.h"
#include "marlune/announce/announcer_settings.h"
#include "marlune/announce/phrase_problem.h"
#include "marlune/announce/prepared_phrase.h"
#include "marlune/marlune.h"

#endif  // MARLUNE_ANNOUNCE_H_
