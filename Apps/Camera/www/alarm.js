// The views of alarms: the motion grid, and what is active now.
"use strict";

const motionForm = settingsForm({
  form: byId("motion-form"), get: () => motionView.root,
  set: values => motionView.save(values),
  fields: [
    {label: "Motion detection", path: "motion/switch"},
    {label: "Sensitivity", path: "motion/sensitivity"},
    {label: "Alarm lasts (seconds)", path: "motion/alarmHoldTime"},
  ],
});

const motionView = {
  root: null,
  cells: [], // rows of booleans
  outputs: [],

  async show() {
    motionView.root = await call("GetMotionConfig");
    const columns = Number(find(motionView.root, "motion/area/itemType").getAttribute("maxLen"));
    // A row's text may hold more digits than there are cells: the last ones count.
    motionView.cells = itemsOf(motionView.root, "motion/area").map(item =>
      [...item.textContent.trim().padStart(columns, "0").slice(-columns)].map(digit => digit === "1"));
    motionView.outputs = itemsOf(motionView.root, "motion/triggerAlarmOut").map(item => item.getAttribute("id"));
    await motionForm();
    byId("motion-form").prepend(triggerField(motionView.root, motionView.outputs));
    motionView.showGrid(columns);
    await showSnapshot(byId("motion-stage").querySelector("img"));
  },

  showGrid(columns) {
    const grid = byId("motion-grid");
    grid.style.gridTemplateColumns = `repeat(${columns}, 1fr)`;
    grid.style.gridTemplateRows = `repeat(${motionView.cells.length}, 1fr)`;
    grid.replaceChildren(...motionView.cells.flatMap((row, y) => row.map((on, x) => {
      const cell = make("button", {type: "button", ariaPressed: String(on), ariaLabel: `Row ${y + 1}, column ${x + 1}`, tabIndex: x + y === 0 ? 0 : -1});
      cell.dataset.place = `${y} ${x}`;
      return cell;
    })));
  },

  set(cell, on) {
    const [y, x] = cell.dataset.place.split(" ").map(Number);
    motionView.cells[y][x] = on;
    cell.ariaPressed = String(on);
  },

  setAll(on) {
    byId("motion-grid").querySelectorAll("button").forEach(cell => motionView.set(cell, on));
  },

  save(values) {
    const rows = motionView.cells.map(row => element("item", row.map(Number).join(""))).join("");
    const area = element("area", "<itemType/>" + rows, ` type="list" count="${motionView.cells.length}"`);
    const body = nest(values).replace("</motion>", area + triggerList(motionView.outputs) + "</motion>");
    return call("SetMotionConfig", configDocument(body));
  },
};

// The outputs that an alarm switches on: a checkbox for each, kept in `chosen`.
function triggerField(root, chosen) {
  const list = find(root, "motion/triggerAlarmOut") || find(root, "sensor/triggerAlarmOut");
  const count = list ? Number(list.getAttribute("count")) : 0;
  const boxes = [...Array(count).keys()].map(String).map(id => {
    const box = make("input", {type: "checkbox", checked: chosen.includes(id), ariaLabel: "Output " + id});
    box.onchange = () => box.checked ? chosen.push(id) : chosen.splice(chosen.indexOf(id), 1);
    return make("span", {}, box, " " + id + " ");
  });
  return make("div", {}, make("label", {}, "Switches on outputs"), ...boxes);
}

const triggerList = chosen => element("triggerAlarmOut", chosen.map(id =>
  element("item", "true", ` id="${id}"`)).join(""), ` type="list" count="${chosen.length}"`);

const grid = byId("motion-grid");
grid.onpointerdown = event => {
  if (event.target.dataset.place) {
    const on = event.target.ariaPressed !== "true";
    motionView.set(event.target, on);
    grid.onpointermove = move => {
      const cell = document.elementFromPoint(move.clientX, move.clientY);
      if (cell && cell.parentElement === grid) {
        motionView.set(cell, on);
      }
    };
    window.addEventListener("pointerup", () => grid.onpointermove = null, {once: true});
  }
};
grid.onkeydown = event => {
  const step = {ArrowLeft: [0, -1], ArrowRight: [0, 1], ArrowUp: [-1, 0], ArrowDown: [1, 0]}[event.key];
  const place = event.target.dataset.place;
  if (step && place) {
    const [y, x] = place.split(" ").map(Number);
    grid.querySelector(`[data-place="${y + step[0]} ${x + step[1]}"]`)?.focus();
    event.preventDefault();
  } else if (event.key === " " && place) {
    motionView.set(event.target, event.target.ariaPressed !== "true");
    event.preventDefault();
  }
};
byId("motion-all").onclick = () => motionView.setAll(true);
byId("motion-none").onclick = () => motionView.setAll(false);

const alarmView = {
  timer: 0,

  async show() {
    // First, so that leaving the view while it is filled ends the timer too.
    alarmView.timer = setInterval(() => act(alarmView.update), 2000);
    await alarmView.update();
    await alarmView.showInputs();
    await alarmView.showOutputs();
    await serverForm();
  },

  hide() {
    clearInterval(alarmView.timer);
  },

  // The library's status, and the camera's own for contacts and outputs.
  async update() {
    const info = find(await call("GetAlarmStatus"), "alarmStatusInfo");
    const state = await control("status");
    const rows = [];
    const put = (name, active, ...more) => rows.push(tableRow(heading(name),
      make("span", {className: active ? "on" : "off"}, active ? "active" : "quiet"), make("td", {}, ...more)));
    for (const one of info.children) {
      const number = Number(one.getAttribute("id")) + 1;
      const active = one.textContent.trim() === "true";
      if (one.localName === "motionAlarm") {
        put("Motion on channel " + number, active);
      } else if (one.localName === "videoLoss") {
        put("No picture on channel " + number, active);
      } else {
        for (const item of one.children) {
          const id = item.getAttribute("id");
          const closed = state.querySelector(`sensor[id="${id}"]`)?.getAttribute("contact") === "closed";
          put("Input " + id, item.textContent.trim() === "true",
            button(closed ? "Open the contact" : "Close the contact", () => alarmView.change(`sensor ${id} ${closed ? "open" : "close"}`)));
        }
      }
    }
    for (const output of state.querySelectorAll("output")) {
      const on = output.textContent === "true";
      const id = output.getAttribute("id");
      put("Output " + id, on, button(on ? "Switch off" : "Switch on", () => act(async () => {
        await call("ManualAlarmOut/" + id, configDocument(nest({"action/status": !on})));
        await alarmView.update();
      })));
    }
    if (document.activeElement && byId("alarm-rows").contains(document.activeElement)) {
      alarmView.keepFocus(rows);
    } else {
      byId("alarm-rows").replaceChildren(...rows);
    }
  },

  // A person on a keyboard stays where they are when the table changes.
  keepFocus(rows) {
    const index = [...byId("alarm-rows").querySelectorAll("button")].indexOf(document.activeElement);
    byId("alarm-rows").replaceChildren(...rows);
    byId("alarm-rows").querySelectorAll("button")[index]?.focus();
  },

  change: command => act(async () => {
    await control(command);
    await alarmView.update();
  }),

  async showInputs() {
    const ids = itemsOf(await call("GetAlarmInList"), "alarmInIDList").map(item => item.textContent.trim());
    byId("sensor-forms").replaceChildren();
    for (const id of ids) {
      const form = make("form", {className: "fields"});
      byId("sensor-forms").append(make("h3", {}, "Input " + id), form);
      const chosen = [];
      const load = settingsForm({form, get: "GetAlarmInConfig/" + id,
        set: values => call("SetAlarmInConfig/" + id, configDocument(nest(values).replace("</sensor>", triggerList(chosen) + "</sensor>"))),
        fields: [
          {label: "Name", path: "sensor/sensorName"},
          {label: "In use", path: "sensor/switch"},
          {label: "Contact is normally (NO open, NC closed)", path: "sensor/voltage"},
          {label: "Alarm lasts (seconds)", path: "sensor/alarmHoldTime"},
        ]});
      const root = await load();
      chosen.push(...itemsOf(root, "sensor/triggerAlarmOut").map(item => item.getAttribute("id")));
      form.prepend(triggerField(root, chosen));
    }
  },

  async showOutputs() {
    const ids = itemsOf(await call("GetAlarmOutList"), "alarmInIDList").map(item => item.textContent.trim());
    byId("output-forms").replaceChildren();
    for (const id of ids) {
      const form = make("form", {className: "fields"});
      byId("output-forms").append(make("h3", {}, "Output " + id), form);
      await settingsForm({form, get: "GetAlarmOutConfig/" + id, set: "SetAlarmOutConfig/" + id,
        fields: [
          {label: "Name", path: "alarmOut/alarmOutName"},
          {label: "Stays on (seconds)", path: "alarmOut/alarmHoldTime"},
        ]})();
    }
  },
};

const serverForm = settingsForm({
  form: byId("server-form"), get: "GetAlarmServerConfig", set: "SetAlarmServerConfig",
  fields: [
    {label: "Address", path: "alarmServer/serverAddr"},
    {label: "Port", path: "alarmServer/serverPort"},
  ],
});
