#ifndef MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_LIBRARY_H_
#define MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_LIBRARY_H_

#include <pulse/pulseaudio.h>

#include "marlune/desktop/loading/loaded_library.h"

namespace marlune {

// The libpulse functions in use, loaded on demand: machines without a PulseAudio server need none.
struct PulseLibrary {
  decltype(&pa_threaded_mainloop_new) loopNew = nullptr;
  decltype(&pa_threaded_mainloop_free) loopFree = nullptr;
  decltype(&pa_threaded_mainloop_start) loopStart = nullptr;
  decltype(&pa_threaded_mainloop_stop) loopStop = nullptr;
  decltype(&pa_threaded_mainloop_lock) loopLock = nullptr;
  decltype(&pa_threaded_mainloop_unlock) loopUnlock = nullptr;
  decltype(&pa_threaded_mainloop_wait) loopWait = nullptr;
  decltype(&pa_threaded_mainloop_signal) loopSignal = nullptr;
  decltype(&pa_threaded_mainloop_get_api) loopApi = nullptr;
  decltype(&pa_rtclock_now) now = nullptr;
  decltype(&pa_strerror) errorText = nullptr;

  decltype(&pa_context_new) contextNew = nullptr;
  decltype(&pa_context_unref) contextUnref = nullptr;
  decltype(&pa_context_set_state_callback) contextOnState = nullptr;
  decltype(&pa_context_connect) contextConnect = nullptr;
  decltype(&pa_context_disconnect) contextDisconnect = nullptr;
  decltype(&pa_context_get_state) contextState = nullptr;
  decltype(&pa_context_errno) contextError = nullptr;
  decltype(&pa_context_rttime_new) contextTimer = nullptr;
  decltype(&pa_context_get_sink_info_by_name) contextSinkInfo = nullptr;
  decltype(&pa_operation_unref) operationUnref = nullptr;

  decltype(&pa_proplist_new) propertiesNew = nullptr;
  decltype(&pa_proplist_sets) propertiesSet = nullptr;
  decltype(&pa_proplist_free) propertiesFree = nullptr;

  decltype(&pa_stream_new_with_proplist) streamNew = nullptr;
  decltype(&pa_stream_unref) streamUnref = nullptr;
  decltype(&pa_stream_set_state_callback) streamOnState = nullptr;
  decltype(&pa_stream_set_write_callback) streamOnWrite = nullptr;
  decltype(&pa_stream_set_underflow_callback) streamOnUnderflow = nullptr;
  decltype(&pa_stream_connect_playback) streamConnect = nullptr;
  decltype(&pa_stream_disconnect) streamDisconnect = nullptr;
  decltype(&pa_stream_get_state) streamState = nullptr;
  decltype(&pa_stream_flush) streamFlush = nullptr;
  decltype(&pa_stream_begin_write) streamBeginWrite = nullptr;
  decltype(&pa_stream_cancel_write) streamCancelWrite = nullptr;
  decltype(&pa_stream_write) streamWrite = nullptr;
  decltype(&pa_stream_update_timing_info) streamUpdateTiming = nullptr;
  decltype(&pa_stream_get_timing_info) streamTiming = nullptr;

  // Loads the library once per process.
  static Result<const PulseLibrary*> shared();

 private:
  explicit PulseLibrary(LoadedLibrary& library);
};

}  // namespace marlune

#endif  // MARLUNE_DESKTOP_AUDIO_DEVICE_PULSE_LIBRARY_H_
