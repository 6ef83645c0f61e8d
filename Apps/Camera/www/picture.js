// The views of what is in the picture: image, streams and sound, text and masks.
"use strict";

const imageForm = settingsForm({
  form: byId("image-form"), get: "GetImageConfig", set: "SetImageConfig", live: true,
  changed: () => showSnapshot(byId("image-picture")),
  fields: [
    {label: "Brightness", path: "image/bright"},
    {label: "Contrast", path: "image/contrast"},
    {label: "Saturation", path: "image/saturation"},
    {label: "Hue", path: "image/hue"},
    {label: "Sharpen", path: "image/sharpen/switch"},
    {label: "Sharpness", path: "image/sharpen/value"},
    {label: "Mirror", path: "image/mirrorSwitch"},
    {label: "Flip", path: "image/flipSwitch"},
    {label: "White balance", path: "image/whiteBalance/mode"},
    {label: "Red", path: "image/whiteBalance/red"},
    {label: "Blue", path: "image/whiteBalance/blue"},
    {label: "Day and night", path: "image/IRCutMode"},
    {label: "Mains frequency", path: "image/frequency", words: [["0", "60 Hz"], ["1", "50 Hz"]]},
    {label: "Wide dynamic range", path: "image/WDR/switch"},
    {label: "Denoise", path: "image/denoise/switch"},
    {label: "Automatic iris", path: "image/irisSwitch"},
  ],
});

const imageView = {
  async show() {
    await imageForm();
    await showSnapshot(byId("image-picture"));
  },
};

// Quality, level and GOP are not reported as they are: they change when a person chooses something.
const UNCHANGED = ["", "leave as it is"];

const streamView = {
  async show() {
    const [caps, config] = [await call("GetStreamCaps"), await call("GetVideoStreamConfig")];
    const capsItems = itemsOf(caps, "streamList");
    byId("video-forms").replaceChildren(...itemsOf(config, "streams").map((item, index) =>
      streamView.form(item, capsItems[index])));
    await audioForm();
  },

  form(item, caps) {
    const id = item.getAttribute("id");
    const sizes = itemsOf(caps, "resolutionCaps");
    const rate = sizes.length ? sizes[0].getAttribute("maxFrameRate") : "60";
    const number = (path, min, max) => make("input", {type: "number", required: true, min, max, value: textOf(item, path)});
    const choice = (words, value) => {
      const select = make("select", {}, ...words.map(word => [].concat(word)).map(([word, label]) => make("option", {value: word}, label ?? word)));
      select.value = value;
      return select;
    };
    const bitRate = find(item, "maxBitRate");
    const inputs = {
      resolution: choice(sizes.map(size => size.textContent.trim()), textOf(item, "resolution")),
      frameRate: number("frameRate", 1, rate),
      maxBitRate: number("maxBitRate", bitRate.getAttribute("min"), bitRate.getAttribute("max")),
      GOP: make("input", {type: "number", min: find(item, "GOP").getAttribute("min"), max: find(item, "GOP").getAttribute("max"), placeholder: UNCHANGED[1]}),
      quality: choice([UNCHANGED, "lowest", "lower", "medium", "higher", "highest"], ""),
      encodeLevel: choice([UNCHANGED, ["baseLine", "baseline"], ["mainProfile", "main"], ["highProfile", "high"]], ""),
    };
    const labels = {resolution: "Size", frameRate: "Frames a second", maxBitRate: "Bit rate (kbit/s)", GOP: "Frames to a key frame", quality: "Quality", encodeLevel: "Profile"};
    const form = make("form", {className: "fields"}, ...Object.entries(inputs).map(([name, input]) => {
      input.dataset.path = `stream${id}/${name}`;
      return labelled(labels[name], input);
    }), make("button", {type: "submit"}, "Save"));
    form.onsubmit = event => {
      event.preventDefault();
      const chosen = Object.fromEntries(Object.entries(inputs).map(([name, input]) => [name, input.value]).filter(([, value]) => value !== ""));
      const body = element("streams", element("item", nest(chosen), ` id="${id}"`), ' type="list" count="1"');
      act(async () => {
        await call("SetVideoStreamConfig", configDocument(body));
        // The command answers success whatever becomes of the settings.
        const kept = itemsOf(await call("GetVideoStreamConfig"), "streams")[Number(id)];
        if (["resolution", "frameRate", "maxBitRate"].some(name => textOf(kept, name) !== inputs[name].value)) {
          throw new Error("The camera does not accept one of these values.");
        }
      }, "Saved.");
    };
    return make("div", {}, make("h3", {}, "Stream " + textOf(item, "name")), form);
  },
};

const audioForm = settingsForm({
  form: byId("audio-form"), get: "GetAudioStreamConfig", set: "SetAudioStreamConfig",
  fields: [{label: "Code; players reconnect", path: "audioEncode"}],
});

const DATE_FORMATS = [["year-month-day", "year-month-day"], ["month-day-year", "month-day-year"], ["day-month-year", "day-month-year"]];
const osdForm = settingsForm({
  form: byId("osd-form"), get: "GetImageOsdConfig", set: "SetImageOsdConfig",
  changed: () => overlayView.refresh(),
  fields: [
    {label: "Time", path: "imageOsd/time/switch", always: true},
    {label: "Time, X", path: "imageOsd/time/X"},
    {label: "Time, Y", path: "imageOsd/time/Y"},
    {label: "Date", path: "imageOsd/time/dateFormat", words: DATE_FORMATS},
    {label: "Name", path: "imageOsd/channelName/switch"},
    {label: "Name, X", path: "imageOsd/channelName/X"},
    {label: "Name, Y", path: "imageOsd/channelName/Y"},
    {label: "Name, text", path: "imageOsd/channelName/name"},
  ],
});

const overlayView = {
  stage: byId("overlay-stage"),
  masks: [],

  async show() {
    await osdForm();
    byId("osd-form").oninput = () => overlayView.draw();
    overlayView.masks = itemsOf(await call("GetPrivacyMaskConfig"), "privacyMask").map(item => ({
      on: textOf(item, "switch") === "true", x: +textOf(item, "rectangle/X"), y: +textOf(item, "rectangle/Y"),
      width: +textOf(item, "rectangle/width"), height: +textOf(item, "rectangle/height"), color: textOf(item, "color")}));
    await overlayView.refresh();
  },

  async refresh() {
    await showSnapshot(overlayView.stage.querySelector("img"));
    overlayView.showMasks();
  },

  size() {
    const image = overlayView.stage.querySelector("img");
    return {width: image.naturalWidth || 1, height: image.naturalHeight || 1};
  },

  // Puts a box over the picture, in per cent of it.
  box(className, x, y, width, height, text) {
    const size = overlayView.size();
    const one = make("div", {className: "box " + className}, text);
    one.style.left = 100 * x / size.width + "%";
    one.style.top = 100 * y / size.height + "%";
    if (width) {
      one.style.width = 100 * width / size.width + "%";
      one.style.height = 100 * height / size.height + "%";
    }
    return one;
  },

  input: path => byId("osd-form").querySelector(`[data-path="imageOsd/${path}"]`),

  draw() {
    overlayView.stage.querySelectorAll(".box").forEach(one => one.remove());
    overlayView.masks.forEach((mask, index) => mask.on && overlayView.stage.append(
      overlayView.box("mask", mask.x, mask.y, mask.width, mask.height, "Mask " + (index + 1))));
    for (const [name, text] of [["time", "Time"], ["channelName", "Name"]]) {
      if (overlayView.input(name + "/switch").checked) {
        const one = overlayView.box("text", overlayView.input(name + "/X").value, overlayView.input(name + "/Y").value, 0, 0, text);
        one.dataset.osd = name;
        overlayView.stage.append(one);
      }
    }
  },

  showMasks() {
    byId("mask-rows").replaceChildren(...overlayView.masks.map((mask, index) => overlayView.maskRow(mask, index)));
    overlayView.draw();
  },

  maskRow(mask, index) {
    const change = (name, read) => event => {
      mask[name] = read(event.target);
      overlayView.draw();
    };
    const label = name => `Mask ${index + 1}, ${name}`;
    const number = name => make("input", {type: "number", min: 0, value: mask[name], ariaLabel: label(name), oninput: change(name, input => Number(input.value))});
    const color = make("select", {ariaLabel: label("colour"), onchange: change("color", input => input.value)},
      ...["black", "white", "gray"].map(word => make("option", {value: word, selected: word === mask.color}, word)));
    return tableRow(
      make("input", {type: "checkbox", checked: mask.on, ariaLabel: label("on"), onchange: change("on", input => input.checked)}),
      number("x"), number("y"), number("width"), number("height"), color,
      button("Remove", () => {
        overlayView.masks.splice(index, 1);
        overlayView.showMasks();
      }));
  },

  addMask(mask) {
    if (overlayView.masks.length >= 8) {
      say("There are eight masks already.", true);
      return;
    }
    overlayView.masks.push({on: true, color: "black", ...mask});
    overlayView.showMasks();
  },

  save() {
    const items = overlayView.masks.map(mask => element("item", nest({
      "switch": mask.on, "rectangle/X": mask.x, "rectangle/Y": mask.y, "rectangle/width": mask.width,
      "rectangle/height": mask.height, "color": mask.color}))).join("");
    const body = element("privacyMask", "<itemType/>" + items, ` type="list" count="${overlayView.masks.length}"`);
    return act(async () => {
      await call("SetPrivacyMaskConfig", configDocument(body));
      await overlayView.refresh();
    }, "Saved.");
  },

  // A drag moves the text that it begins on, and draws a mask anywhere else.
  place(event) {
    const frame = overlayView.stage.querySelector("img").getBoundingClientRect();
    const size = overlayView.size();
    const inside = (value, most) => Math.max(0, Math.min(most, Math.round(value)));
    return {x: inside((event.clientX - frame.left) / frame.width * size.width, size.width - 1),
            y: inside((event.clientY - frame.top) / frame.height * size.height, size.height - 1)};
  },
};

overlayView.stage.onpointerdown = down => {
  down.preventDefault();
  const text = down.target.dataset.osd;
  const from = overlayView.place(down);
  const rectangle = to => ({x: Math.min(from.x, to.x), y: Math.min(from.y, to.y), width: Math.abs(to.x - from.x), height: Math.abs(to.y - from.y)});
  let sketch = null;
  overlayView.stage.onpointermove = move => {
    const to = overlayView.place(move);
    if (text) {
      overlayView.input(text + "/X").value = to.x;
      overlayView.input(text + "/Y").value = to.y;
      overlayView.draw();
    } else {
      const {x, y, width, height} = rectangle(to);
      sketch?.remove();
      sketch = overlayView.box("mask", x, y, width, height, "New mask");
      overlayView.stage.append(sketch);
    }
  };
  window.onpointerup = up => {
    overlayView.stage.onpointermove = window.onpointerup = null;
    sketch?.remove();
    const drawn = rectangle(overlayView.place(up));
    if (!text && drawn.width > 4 && drawn.height > 4) {
      overlayView.addMask(drawn);
    }
  };
};
byId("mask-add").onclick = () => {
  const {width, height} = overlayView.size();
  overlayView.addMask({x: Math.round(width * .4), y: Math.round(height * .4), width: Math.round(width * .2), height: Math.round(height * .2)});
};
byId("mask-save").onclick = () => overlayView.save();
