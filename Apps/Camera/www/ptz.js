// The view of the head: a pad, presets, cruises.
"use strict";

const PAD = [
  ["↖", "leftup", "Left and up"], ["↑", "up", "Up"], ["↗", "rightup", "Right and up"],
  ["←", "left", "Left"], ["■", "stop", "Stop"], ["→", "right", "Right"],
  ["↙", "leftdown", "Left and down"], ["↓", "down", "Down"], ["↘", "rightdown", "Right and down"],
];
const LENS = [
  ["Zoom in", "zoomin"], ["Zoom out", "zoomout"], ["Near", "near"], ["Far", "far"],
  ["Iris open", "irisopen"], ["Iris close", "irisclose"],
];

const ptzView = {
  run: null, // the loop that shows pictures; null while the view is left

  async show() {
    const run = ptzView.run = {};
    const caps = await call("PtzGetCaps");
    byId("ptz-speed").min = textOf(caps, "caps/controlMinSpeed");
    byId("ptz-speed").max = textOf(caps, "caps/controlMaxSpeed");
    ptzView.play(run);
    await ptzView.showPresets();
    await ptzView.showCruises();
    await protocolForm();
  },

  hide() {
    ptzView.run = null;
  },

  async play(run) {
    const isShown = () => ptzView.run === run;
    while (isShown() && await act(() => showSnapshotWhile(isShown, byId("ptz-picture")))) {
    }
  },

  drive(action) {
    return act(() => call("PtzControl/1/" + action, element("actionInfo", nest({speed: byId("ptz-speed").value}))));
  },

  // Held: moves. Let go: stops.
  driveButton(label, action, title) {
    const one = button(label, null);
    let held = false;
    const start = () => {
      if (!held) {
        held = true;
        ptzView.drive(action);
      }
    };
    const end = () => {
      if (held) {
        held = false;
        ptzView.drive("stop");
      }
    };
    one.dataset.action = action;
    one.title = one.ariaLabel = title || label;
    one.onpointerdown = start;
    one.onpointerup = one.onpointerleave = one.onpointercancel = one.onblur = end;
    one.onkeydown = event => [" ", "Enter"].includes(event.key) && start();
    one.onkeyup = event => [" ", "Enter"].includes(event.key) && end();
    return one;
  },

  preset: (command, values, done) => act(async () => {
    await call(command, element("presetInfo", nest(values)));
    await ptzView.showPresets();
  }, done),

  async showPresets() {
    const items = itemsOf(await call("PtzGetPresets"), "presetInfo");
    byId("preset-rows").replaceChildren(...items.map(item => {
      const id = item.getAttribute("id");
      const name = item.textContent.trim();
      return tableRow(heading(id + " " + name), make("td", {},
        button("Go to", () => act(() => call("PtzGotoPreset", element("presetInfo", nest({id}))), "Going to " + name + ".")),
        button("Set to this view", () => ptzView.preset("PtzModifyPresetPosition", {id}, "Saved.")),
        button("Rename", () => {
          const changed = prompt("Name of the preset", name);
          if (changed !== null) {
            ptzView.preset("PtzModifyPresetName", {id, name: changed}, "Saved.");
          }
        }),
        button("Delete", () => ptzView.preset("PtzDeletePreset", {id}, "Deleted."))));
    }));
  },

  cruise: (command, id, done) => act(async () => {
    await call(command, element("cruiseInfo", nest({id})));
    await ptzView.showCruises();
  }, done),

  async showCruises() {
    const items = itemsOf(await call("PtzGetCruises"), "cruiseInfo");
    byId("cruise-rows").replaceChildren(...await Promise.all(items.map(async item => {
      const id = item.getAttribute("id");
      const points = itemsOf(await call("PtzGetCruise", element("cruiseInfo", nest({id}))), "presetInfo");
      const way = points.map(point => textOf(point, "name") || point.getAttribute("id")).join(", ");
      return tableRow(heading(id + " " + item.textContent.trim()), way, make("td", {},
        button("Run", () => ptzView.cruise("PtzRunCruise", id, "The cruise runs.")),
        button("Stop", () => ptzView.cruise("PtzStopCruise", id, "The cruise has stopped.")),
        button("Delete", () => ptzView.cruise("PtzDeleteCruise", id, "Deleted."))));
    })));
  },
};

const protocolForm = settingsForm({
  form: byId("protocol-form"), get: "PtzGetProtocolConfig", set: "PtzSetProtocolConfig",
  fields: [
    {label: "Baud rate", path: "ptzInfo/baudRate"},
    {label: "Protocol", path: "ptzInfo/protocol"},
    {label: "Address", path: "ptzInfo/address"},
  ],
});

byId("ptz-pad").replaceChildren(...PAD.map(([label, action, title]) => ptzView.driveButton(label, action, title)));
byId("ptz-lens").replaceChildren(...LENS.map(([label, action]) => ptzView.driveButton(label, action)));
byId("preset-form").onsubmit = event => {
  event.preventDefault();
  ptzView.preset("PtzAddPreset", {name: byId("preset-name").value}, "Added.").then(() => event.target.reset());
};
byId("cruise-form").onsubmit = event => {
  event.preventDefault();
  const speed = byId("ptz-speed").value;
  const holdTime = byId("cruise-hold").value;
  const items = byId("cruise-presets").value.split(/[\s,]+/).filter(Boolean).map(id =>
    element("item", nest({speed, holdTime}), ` id="${escapeXml(id)}"`)).join("");
  act(async () => {
    await call("PtzAddCruise", element("cruiseInfo", nest({name: byId("cruise-name").value}) + element("presetInfo", items)));
    event.target.reset();
    await ptzView.showCruises();
  }, "Added.");
};
