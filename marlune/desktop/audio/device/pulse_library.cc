#include "marlune/desktop/audio/device/pulse_library.h"

namespace marlune {

Result<const PulseLibrary*> PulseLibrary::shared() {
  static LoadedLibrary library("libpulse.so.0");
  static const PulseLibrary functions(library);
  return library.offering(functions);
}

PulseLibrary::PulseLibrary(LoadedLibrary& library) {
  library.find("pa_threaded_mainloop_new", loopNew);
  library.find("pa_threaded_mainloop_free", loopFree);
  library.find("pa_threaded_mainloop_start", loopStart);
  library.find("pa_threaded_mainloop_stop", loopStop);
  library.find("pa_threaded_mainloop_lock", loopLock);
  library.find("pa_threaded_mainloop_unlock", loopUnlock);
  library.find("pa_threaded_mainloop_wait", loopWait);
  library.find("pa_threaded_mainloop_signal", loopSignal);
  library.find("pa_threaded_mainloop_get_api", loopApi);
  library.find("pa_rtclock_now", now);
  library.find("pa_strerror", errorText);
  library.find("pa_context_new", contextNew);
  library.find("pa_context_unref", contextUnref);
  library.find("pa_context_set_state_callback", contextOnState);
  library.find("pa_context_connect", contextConnect);
  library.find("pa_context_disconnect", contextDisconnect);
  library.find("pa_context_get_state", contextState);
  library.find("pa_context_errno", contextError);
  library.find("pa_context_rttime_new", contextTimer);
  library.find("pa_context_get_sink_info_by_name", contextSinkInfo);
  library.find("pa_operation_unref", operationUnref);
  library.find("pa_proplist_new", propertiesNew);
  library.find("pa_proplist_sets", propertiesSet);
  library.find("pa_proplist_free", propertiesFree);
  library.find("pa_stream_new_with_proplist", streamNew);
  library.find("pa_stream_unref", streamUnref);
  library.find("pa_stream_set_state_callback", streamOnState);
  library.find("pa_stream_set_write_callback", streamOnWrite);
  library.find("pa_stream_set_underflow_callback", streamOnUnderflow);
  library.find("pa_stream_connect_playback", streamConnect);
  library.find("pa_stream_disconnect", streamDisconnect);
  library.find("pa_stream_get_state", streamState);
  library.find("pa_stream_flush", streamFlush);
  library.find("pa_stream_begin_write", streamBeginWrite);
  library.find("pa_stream_cancel_write", streamCancelWrite);
  library.find("pa_stream_write", streamWrite);
  library.find("pa_stream_update_timing_info", streamUpdateTiming);
  library.find("pa_stream_get_timing_info", streamTiming);
}

}  // namespace marlune
