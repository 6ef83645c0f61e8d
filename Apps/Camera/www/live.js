// The live view: snapshots one after another, and the addresses of the streams.
"use strict";

const liveView = {
  run: null, // the loop that shows pictures; null while there is none
  times: [],

  async show() {
    liveView.play();
    await liveView.showStreams();
  },

  hide() {
    liveView.run = null;
    byId("live-pause").textContent = "Go on";
  },

  // An earlier loop that still waits for its picture ends with that.
  async play() {
    const run = liveView.run = {};
    byId("live-pause").textContent = "Pause";
    while (liveView.run === run) {
      if (!await act(() => showSnapshotWhile(() => liveView.run === run, byId("live-picture")))) {
        await new Promise(done => setTimeout(done, 2000));
      }
      liveView.count();
    }
  },

  // The rate over the last three seconds.
  count() {
    const now = performance.now();
    liveView.times = liveView.times.filter(time => now - time < 3000).concat(now);
    const seconds = (now - liveView.times[0]) / 1000;
    byId("live-rate").textContent = seconds > 0 ? ((liveView.times.length - 1) / seconds).toFixed(1) : "0.0";
  },

  async showStreams() {
    const channels = await call("GetChannelList");
    const rows = [];
    for (const item of itemsOf(channels, "channelIDList")) {
      for (const [title, path] of [["Main", "main"], ["Sub", "sub"]]) {
        const channel = item.textContent.trim();
        rows.push(tableRow(channel, title, ...addressCells(rtspAddress(`/live/ch${channel}/${path}`))));
      }
    }
    byId("stream-rows").replaceChildren(...rows);
  },
};

// The port may have been changed since the page was served.
const rtsp = {port: document.querySelector("meta[name=rtsp-port]").content.trim()};
const rtspAddress = path => "rtsp://" + location.hostname + ":" + rtsp.port + path;

byId("live-pause").onclick = () => {
  if (liveView.run) {
    liveView.hide();
  } else {
    liveView.play();
  }
};
byId("live-key").onclick = () => act(() => call("RequestKeyFrame"), "The next frame is a key frame.");
