// The operator's page: shows what the console tells, and sends its commands.
"use strict";
(() => {
  const silentLimitMs = 12000;       // the console is heard at least every 5 s
  const oldProgramMs = 3000;         // pictures of program come 5 times a second
  const oldTilesMs = 6000;           // pictures of the channels come once a second
  const commandTimeoutMs = 5000;
  const lateCommandMs = 1500;        // a command that had to wait for longer than this would surprise
  const doubleTapMs = 400;
  const stopAgainMs = 3000;
  const meterFloorDb = -60;
  const tokenKey = "korvia-token", tokenForm = /^[A-Za-z0-9_-]{22}$/;
  const cell = { width: 240, height: 135, columns: 4, media: 8, stages: 4, firstMedia: 16, firstStage: 256 };

  const byId = id => document.getElementById(id);
  const now = () => performance.now();
  const sleep = ms => new Promise(done => setTimeout(done, ms));
  const isObject = value => value !== null && typeof value === "object" && !Array.isArray(value);
  const isNumber = value => typeof value === "number" && Number.isFinite(value);
  const object = value => isObject(value) ? value : {};
  const objects = value => Array.isArray(value) ? value.filter(isObject) : [];
  const words = (value, otherwise = "") => typeof value === "string" || isNumber(value) ? String(value) : otherwise;
  const fixed = (value, digits, unit = "") => isNumber(value) ? value.toFixed(digits) + unit : "\u2013";

  // Every text reaches the page as a text node, so that no value can become markup.
  function element(name, className = "", text) {
    const made = document.createElement(name);
    if (className) made.className = className;
    if (text !== undefined) made.textContent = text;
    return made;
  }

  // Nothing is written that stands there already, so that a selection stays and screen readers are not disturbed.
  function setText(target, text) {
    if (target.textContent !== text) target.textContent = text;
  }

  function clock(seconds) {
    const whole = Math.max(0, Math.floor(isNumber(seconds) ? seconds : 0));
    const two = n => String(n).padStart(2, "0");
    return two(Math.floor(whole / 3600)) + ":" + two(Math.floor(whole / 60) % 60) + ":" + two(whole % 60);
  }

  // ---- requests ----

  const untilHidden = new Set();
  document.addEventListener("visibilitychange", () => {
    if (document.hidden) {
      for (const stop of untilHidden) stop.abort();
      // The pictures are old when the page is seen again.
      programMs = tilesMs = -Infinity;
    }
    showAge();
  });

  async function untilVisible() {
    const change = () => new Promise(done => document.addEventListener("visibilitychange", done, { once: true }));
    while (document.hidden) await change();
  }

  // For what is of use only while somebody looks: ends when the page is hidden.
  async function load(path, as, timeoutMs = 10000) {
    const stop = new AbortController();
    const timer = setTimeout(() => stop.abort(), timeoutMs);
    untilHidden.add(stop);
    try {
      const reply = await fetch(path, { cache: "no-store", signal: stop.signal });
      const answer = { status: reply.status, number: reply.headers.get("X-Korvia-Picture"), beganMs: now() };
      return { ...answer, body: reply.ok ? await reply[as]() : null };
    } finally {
      clearTimeout(timer);
      untilHidden.delete(stop);
    }
  }

  // ---- token ----

  let token = "";
  const dialog = byId("token-dialog"), tokenField = byId("token-field");

  // A browser may refuse storage; then the token lasts as long as the page.
  function storage(use) {
    try { return use(localStorage); } catch { return null; }
  }

  function setToken(text) {
    token = text;
    storage(kept => text ? kept.setItem(tokenKey, text) : kept.removeItem(tokenKey));
    showToken();
  }

  function showToken() {
    document.body.classList.toggle("locked", !token);
    setText(byId("token-button"), token ? "Unlocked" : "Locked");
    byId("token-button").title = token ? "Commands are unlocked" : "Commands need the token";
  }

  // The address bar must not show the token, and a bookmark must not keep it.
  function takeTokenFromAddress() {
    const text = location.hash.slice(1);
    if (!text) return;
    history.replaceState(null, "", location.pathname + location.search);
    if (tokenForm.test(text)) setToken(text);
  }

  function askForToken(reason) {
    setText(byId("token-reason"), reason);
    tokenField.value = "";
    byId("token-forget").hidden = !token;
    if (!dialog.open) dialog.showModal();
    tokenField.focus();
  }

  function startToken() {
    token = storage(kept => kept.getItem(tokenKey)) || "";
    showToken();
    takeTokenFromAddress();
    addEventListener("hashchange", takeTokenFromAddress);
    byId("token-button").addEventListener("click", () => askForToken(""));
    byId("token-cancel").addEventListener("click", () => dialog.close());
    byId("token-forget").addEventListener("click", () => {
      setToken("");
      dialog.close();
    });
    dialog.querySelector("form").addEventListener("submit", event => {
      event.preventDefault();
      // Whoever pastes the whole address means the token in it.
      const text = tokenField.value.trim().replace(/^.*#/, "");
      if (!tokenForm.test(text)) {
        setText(byId("token-reason"), "A token has 22 letters, digits, - or _.");
        return tokenField.focus();
      }
      setToken(text);
      dialog.close();
    });
  }

  // ---- messages ----

  let messageTimer = 0;
  function say(text) {
    const message = byId("message");
    message.textContent = text;
    message.hidden = false;
    clearTimeout(messageTimer);
    messageTimer = setTimeout(() => { message.hidden = true; }, 5000);
  }

  // ---- connection ----

  const linkWords = {
    connecting: "connecting", up: "connected", retry: "reconnecting", down: "no answer from the console",
  };
  let link = "connecting";
  let consoleEnded = false;

  function setLink(state) {
    link = state;
    byId("link").dataset.state = state;
    setText(byId("link"), consoleEnded && state !== "up" ? "the console has ended, trying again" : linkWords[state]);
    document.body.classList.toggle("lost", state !== "up");
    if (state !== "up") showLevels({});
    showAge();
  }

  // The stream is read by hand, because an EventSource tells neither of the comments that keep it alive nor of all
  // errors.
  async function readEvents() {
    const stop = new AbortController();
    let heardMs = now();
    const watch = setInterval(() => { if (now() - heardMs > silentLimitMs) stop.abort(); }, 1000);
    try {
      const reply = await fetch("/events?levels=1", { cache: "no-store", signal: stop.signal });
      if (!reply.ok || !reply.body) throw new Error("status " + reply.status);
      const reader = reply.body.pipeThrough(new TextDecoderStream()).getReader();
      let rest = "";
      for (;;) {
        const { value, done } = await reader.read();
        if (done) return;
        heardMs = now();
        const blocks = (rest + value).split(/\r?\n\r?\n/);
        rest = blocks.pop();
        for (const block of blocks) handleEvent(block);
        if (link !== "up" && !consoleEnded) setLink("up");
      }
    } finally {
      clearInterval(watch);
      stop.abort();
    }
  }

  const handlers = {
    tally: showTally,
    take: announceTake,
    outputs: showOutputEvent,
    levels: levels => { if (!document.hidden) showLevels(levels); },
    bye: () => { consoleEnded = true; setLink("retry"); },
  };

  function handleEvent(block) {
    let name = "", data = "";
    for (const line of block.split(/\r?\n/)) {
      if (line.startsWith("event:")) name = line.slice(6).trim();
      else if (line.startsWith("data:")) data += line.slice(5);
    }
    if (!Object.hasOwn(handlers, name)) return;
    try {
      handlers[name](object(JSON.parse(data)));
    } catch (error) {
      console.warn("event " + name + " is not understood", error);
    }
  }

  async function followEvents() {
    for (let delayMs = 1000; ; delayMs = Math.min(delayMs * 2, 5000)) {
      try { await readEvents(); } catch { /* told by the link */ }
      const wasUp = link === "up" || consoleEnded;
      setLink(wasUp ? "retry" : "down");
      if (wasUp) delayMs = 1000;
      await sleep(delayMs);
      consoleEnded = false;
    }
  }

  // ---- pictures ----

  let programMs = -Infinity, tilesMs = -Infinity;
  let programMissing = "Waiting for the program picture";

  function showAge() {
    const ageMs = now() - programMs;
    const stale = link !== "up" || ageMs > oldProgramMs;
    document.body.classList.toggle("stale", stale);
    document.body.classList.toggle("tiles-stale", link !== "up" || now() - tilesMs > oldTilesMs);
    const note = byId("picture-note");
    note.hidden = !stale;
    if (!stale) setText(note, "");
    else if (link === "retry" || link === "down") setText(note, "Connection lost. This is not live.");
    else if (programMissing) setText(note, programMissing);
    else if (ageMs === Infinity) setText(note, "Waiting for the program picture");
    else setText(note, "No new picture for " + Math.floor(ageMs / 1000) + " s. This is not live.");
  }

  // One request after the other: a slow phone gets fewer pictures, and none that is late.
  async function followPictures(path, show, missing) {
    let after = null, shown = null;
    for (;;) {
      await untilVisible();
      let pauseMs = 0;
      try {
        const query = after === null ? "" : "?after=" + encodeURIComponent(after);
        const { status, number, beganMs, body } = await load(path + query, "blob");
        if (body === null) {
          // No newer picture came: the next answer tells whether the numbers began anew with another console.
          after = null;
          if (status !== 304) {
            missing(status);
            pauseMs = 1000;
          }
        } else if (number !== null && number === shown) {
          pauseMs = 500;
        } else {
          await show(body, beganMs);
          shown = after = number;
          if (number === null) pauseMs = 200;
        }
      } catch {
        after = null;
        pauseMs = 1000;
      }
      await sleep(pauseMs);
    }
  }

  let programUrl = "";
  async function showProgramPicture(blob, beganMs) {
    const picture = byId("program-picture"), oldUrl = programUrl;
    programUrl = URL.createObjectURL(blob);
    picture.src = programUrl;
    await picture.decode().finally(() => URL.revokeObjectURL(oldUrl));
    picture.hidden = false;
    programMissing = "";
    // A picture that took long to arrive is as old as its first byte.
    programMs = beganMs;
    showAge();
  }

  function missProgramPicture(status) {
    programMissing = status === 503 ? "There is no program picture yet" : "No program picture (" + status + ")";
    byId("program-picture").hidden = true;
    programMs = -Infinity;
    showAge();
  }

  // The place of a channel in the grid of pictures; -1 for a channel that has none there.
  function cellOf(channel) {
    const media = channel - cell.firstMedia, stage = channel - cell.firstStage;
    if (media >= 0 && media < cell.media) return media;
    return stage >= 0 && stage < cell.stages ? stage + cell.media : -1;
  }

  async function showChannelPictures(blob, beganMs) {
    const grid = await createImageBitmap(blob);
    for (const tile of tiles.values()) {
      if (tile.cell < 0 || !tile.inUse) continue;
      const x = tile.cell % cell.columns * cell.width, y = Math.floor(tile.cell / cell.columns) * cell.height;
      tile.canvas.drawImage(grid, x, y, cell.width, cell.height, 0, 0, cell.width, cell.height);
    }
    grid.close();
    tilesMs = beganMs;
    showAge();
  }

  // ---- tally ----

  const tiles = new Map();
  const channelNames = new Map();
  let takeNames = [];
  let lastTake = 0;

  function makeTile(id) {
    const button = element("button", "tile");
    button.type = "button";
    button.dataset.channel = id;
    const shot = element("span", "shot"), canvas = element("canvas"), hint = element("span", "hint");
    const mark = element("span", "mark"), levels = element("span", "levels");
    canvas.width = cell.width;
    canvas.height = cell.height;
    mark.append(element("span", "pgm", "PGM"), element("span", "pvm", "PVM"));
    levels.append(element("i"), element("i"));
    shot.append(canvas, hint, mark, levels);
    const texts = element("span", "texts"), name = element("span", "name"), label = element("span", "label");
    name.dir = label.dir = "auto";
    texts.append(name, label);
    button.append(shot, texts);
    button.addEventListener("click", () => command("/select/" + id, button, "select " + id));
    const bars = [...levels.children];
    return { button, name, label, hint, canvas: canvas.getContext("2d"), bars, cell: cellOf(id), inUse: false };
  }

  function fillTile(tile, channel, tally) {
    const name = words(channel.name, "Channel " + channel.id), label = words(channel.label) || words(channel.kind);
    const onProgram = channel.id === tally.program, onPreview = channel.id === tally.preview;
    tile.inUse = channel.inUse === true;
    setText(tile.name, name);
    setText(tile.label, tile.inUse ? label : "");
    const classes = tile.button.classList;
    classes.toggle("on-program", onProgram);
    classes.toggle("on-preview", onPreview);
    classes.toggle("no-picture", !tile.inUse || tile.cell < 0);
    setText(tile.hint, !tile.inUse ? "Empty" : tile.cell < 0 ? "No picture" : "");
    tile.button.setAttribute("aria-pressed", String(onPreview));
    const place = (onProgram ? ", on program" : "") + (onPreview ? ", on preview" : "") + (tile.inUse ? "" : ", empty");
    tile.button.setAttribute("aria-label", name + (tile.inUse && label ? ", " + label : "") + place);
    tile.button.title = name + (tile.inUse && label ? " \u2013 " + label : "");
    channelNames.set(channel.id, tile.inUse && label ? name + " \u00b7 " + label : name);
  }

  function showTally(tally) {
    const channels = objects(tally.channels).filter(channel => isNumber(channel.id));
    const ids = [...new Set(channels.map(channel => channel.id))];
    // Tiles are kept while the channels stay, so that a finger and the keyboard's focus stay on theirs.
    if (ids.join() !== [...tiles.keys()].join()) {
      tiles.clear();
      for (const id of ids) tiles.set(id, makeTile(id));
      byId("tiles").classList.toggle("few", ids.length <= 4);
      byId("tiles").replaceChildren(...[...tiles.values()].map(tile => tile.button));
    }
    channelNames.clear();
    for (const channel of channels) fillTile(tiles.get(channel.id), channel, tally);
    byId("no-channels").hidden = tiles.size > 0;
    const program = channelNames.get(tally.program) || "\u2013";
    setText(byId("program-name"), program);
    setText(byId("preview-name"), channelNames.get(tally.preview) || "\u2013");
    byId("program-picture").alt = "Program: " + program;
    document.title = "Korvia \u2013 " + program;
    showPosition(tally.switchPosition);
    takeNames = [0, 1, 2, 3].map(index => words(object(objects(tally.takes).find(take => take.index === index)).name));
    showTakes();
  }

  function showPosition(position) {
    const line = byId("switch-position");
    line.hidden = !(position > 0 && position < 1);
    if (!line.hidden) line.style.setProperty("--position", position);
  }

  function showTakes() {
    for (let index = 0; index < 4; ++index) {
      const button = byId("take-" + index), name = takeNames[index] || "Take " + (index + 1);
      if (button.textContent !== name) {
        const text = element("span", "", name);
        text.dir = "auto";
        button.replaceChildren(text);
      }
      button.title = "Take the channel on preview with " + name;
      button.setAttribute("aria-current", String(index === lastTake));
    }
    setText(byId("take").querySelector("small"), takeNames[lastTake] || "");
  }

  function announceTake(take) {
    setText(byId("announcement"), (channelNames.get(take.to) || "Another channel") + " is on program.");
  }

  // ---- levels ----

  const loudness = [...document.querySelectorAll("#loudness [data-value]")];
  const busMeters = [...document.querySelectorAll(".meter-pair")];
  let loudnessShownMs = -Infinity;

  const levelPart = db => isNumber(db) ? Math.min(1, Math.max(0, 1 - db / meterFloorDb)) : 0;
  function setBars(bars, pair) {
    const values = Array.isArray(pair) ? pair : [];
    bars.forEach((bar, side) => bar.style.setProperty("--level", levelPart(values[side]).toFixed(3)));
  }

  function showLevels(levels) {
    for (const meter of busMeters) setBars([...meter.querySelectorAll(".bar")], levels[meter.dataset.bus]);
    const channels = object(levels.channels);
    for (const [id, tile] of tiles) setBars(tile.bars, channels[id]);
    // Figures that change faster cannot be read.
    if (now() - loudnessShownMs < 300 && link === "up") return;
    loudnessShownMs = now();
    for (const value of loudness) setText(value, fixed(levels[value.dataset.value], 1));
    for (const meter of busMeters) {
      const pair = Array.isArray(levels[meter.dataset.bus]) ? levels[meter.dataset.bus].filter(isNumber) : [];
      meter.setAttribute("aria-valuenow", String(Math.round(Math.min(0, Math.max(meterFloorDb, ...pair)))));
    }
  }

  function drawMeterScale() {
    const scale = document.querySelector(".meter-scale");
    for (const db of [-60, -48, -36, -24, -12, -6, 0]) {
      const mark = element("span", "", String(db));
      mark.style.left = levelPart(db) * 100 + "%";
      scale.append(mark);
    }
  }

  // ---- commands ----

  const refusals = {
    403: "The console takes no commands from this address.",
    404: "The console does not know this command or channel.",
    503: "The console is not ready. Try again.",
  };
  let commandChain = Promise.resolve();
  let failedMs = -Infinity;
  const lockedUntilMs = new Map();

  // Commands go out one after the other, so that "select, cut" reaches the console in this order, and when the
  // selection fails nothing is cut. A group takes no second command for the time of a double tap. Tells whether it
  // takes this one.
  function command(path, button, group) {
    if (!token) askForToken("Commands need the token.");
    if (!token || now() < (lockedUntilMs.get(group) || 0)) return false;
    lockedUntilMs.set(group, Infinity);
    button.classList.add("pending");
    const tappedMs = now();
    commandChain = commandChain.then(async () => {
      if (tappedMs > failedMs && !await send(path, tappedMs)) failedMs = now();
      lockedUntilMs.set(group, tappedMs + doubleTapMs);
      button.classList.remove("pending");
    });
    return true;
  }

  // True when the console has taken the command; what went wrong is told.
  async function send(path, tappedMs) {
    if (now() - tappedMs > lateCommandMs) {
      say("The console is slow. The command was not sent.");
      return false;
    }
    const stop = new AbortController();
    const timer = setTimeout(() => stop.abort(), commandTimeoutMs);
    const sentToken = token;
    try {
      const headers = { Authorization: "Bearer " + sentToken };
      const reply = await fetch(path, { method: "POST", headers, signal: stop.signal });
      if (reply.ok) return true;
      if (reply.status !== 401) {
        say(refusals[reply.status] || "The console refused the command (" + reply.status + ").");
        return false;
      }
      if (token === sentToken) setToken("");
      askForToken("The console refused the token. Type the one that korvia printed at its start.");
    } catch {
      say("No answer from the console. Look whether the command has run before you repeat it.");
    } finally {
      clearTimeout(timer);
    }
    return false;
  }

  function takeWith(index, button) {
    if (!command("/take/" + index, button, "take")) return;
    lastTake = index;
    showTakes();
  }

  function startActions() {
    const onTap = (id, act) => byId(id).addEventListener("click", () => act(byId(id)));
    for (let index = 0; index < 4; ++index) onTap("take-" + index, button => takeWith(index, button));
    onTap("take", button => takeWith(lastTake, button));
    onTap("cut", button => command("/cut", button, "take"));
    for (const name of ["record", "stream"]) onTap(name, () => tapOutput(name));
  }

  // ---- record and stream ----

  const idle = () => ({ on: false, waiting: false, state: "", reason: "", armed: 0, armedMs: 0, report: {} });
  const outputs = { record: idle(), stream: idle() };

  // To end a recording or a stream by accident would be worse than a tap more, and a double tap is such an accident.
  function tapOutput(name) {
    const output = outputs[name];
    if (!token || !output.on) return void command("/" + name + "/start", byId(name), name);
    if (!output.armed) {
      output.armed = setTimeout(() => disarm(output), stopAgainMs);
      output.armedMs = now();
      return showOutputButtons();
    }
    if (now() - output.armedMs < doubleTapMs) return;
    disarm(output);
    command("/" + name + "/stop", byId(name), name);
  }

  function disarm(output) {
    clearTimeout(output.armed);
    output.armed = 0;
    showOutputButtons();
  }

  function showOutputEvent(event) {
    for (const [name, output] of Object.entries(outputs)) {
      const told = object(event[name]);
      output.on = told.on === true;
      output.waiting = told.waiting === true;
      output.state = words(told.state);
      output.reason = words(told.reason);
      // Until the engine has answered, the report may still describe the output before.
      if (output.waiting) output.report = {};
      if (!output.on && output.armed) disarm(output);
    }
    showOutputButtons();
  }

  function isAlert(output) {
    const room = output.report.roomSeconds;
    return output.state === "Failed" || words(output.report.warning) !== "" || (isNumber(room) && room < 600) ||
      objects(output.report.targets).some(target => target.state === "Lost" || target.state === "Failed");
  }

  function outputText(output, time) {
    if (output.armed) return "Tap again to stop";
    if (output.waiting) return output.on ? "Starting\u2026" : "Stopping\u2026";
    if (output.state === "Failed") return "Failed";
    return output.on ? time : "Start";
  }

  function showOutputButtons() {
    for (const [name, output] of Object.entries(outputs)) {
      const time = clock(output.report.writtenMs / 1000);
      const text = outputText(output, time);
      const button = byId(name), lamp = byId(name + "-lamp");
      setText(button.querySelector("small"), text);
      button.setAttribute("aria-pressed", String(output.on));
      button.title = output.on ? "Two taps stop it" : output.reason;
      button.toggleAttribute("data-armed", output.armed !== 0);
      button.classList.toggle("waiting", output.waiting);
      button.toggleAttribute("data-alert", isAlert(output));
      lamp.hidden = !output.on;
      lamp.toggleAttribute("data-alert", isAlert(output));
      setText(lamp.querySelector(".clock"), time);
    }
  }

  // ---- outputs, engine, income server ----

  const stateWords = {
    Idle: ["off", "muted"], Starting: ["starting", "warn"], Running: ["running", "good"], Failed: ["failed", "bad"],
    Finished: ["ended", "muted"], Connecting: ["connecting", "warn"], Up: ["up", "good"], Lost: ["lost", "bad"],
  };

  function stateOf(report) {
    const state = words(report.state);
    const [text, look] = Object.hasOwn(stateWords, state) ? stateWords[state] : [state || "not known", "muted"];
    if (state === "Up") return [text + " for " + clock(report.upSeconds), look];
    if (state !== "Lost") return [text, look];
    return [text + (report.retrySeconds > 0 ? ", retry in " + report.retrySeconds + " s" : ", retrying"), look];
  }

  function outputRow(name, report, details, className = "") {
    const row = element("div", "output-row " + className), [text, look] = stateOf(report);
    const title = element("span", "name", name), rest = element("span", "details", details.filter(Boolean).join(", "));
    title.dir = "auto";
    for (const reason of [report.reason, report.warning].map(value => words(value)).filter(Boolean)) {
      if (rest.textContent) rest.append(" \u2013 ");
      rest.append(element("span", "reason", reason));
    }
    row.append(title, element("span", "state " + look, text));
    if (rest.textContent) row.append(rest);
    return row;
  }

  function targetRow(report, className) {
    const details = [report.kbps > 0 ? fixed(report.kbps, 0, " kbit/s") : ""];
    return outputRow(words(report.name, "Target"), report, details, className);
  }

  function slotRows(name, report) {
    const positive = (value, text) => isNumber(value) && value > 0 ? text : "";
    const details = report.state === "Idle" ? [] : [
      positive(report.writtenMs, clock(report.writtenMs / 1000)),
      positive(report.writtenBytes, fixed(report.writtenBytes / 1e6, 1, " MB")),
      words(report.file),
      isNumber(report.roomSeconds) ? "room for " + Math.floor(report.roomSeconds / 60) + " min" : "",
      positive(report.verifiedMs, "verified to " + clock(report.verifiedMs / 1000)),
      positive(report.droppedFrames, report.droppedFrames + " frames dropped"),
    ];
    return [outputRow(name, report, details), ...objects(report.targets).map(target => targetRow(target, "target"))];
  }

  function outputRows(section) {
    return [...slotRows("Record", object(section.record)), ...slotRows("Stream", object(section.stream)),
      ...objects(section.devices).map(device => targetRow(device))];
  }

  function figureList(rows) {
    const list = element("dl", "figures");
    for (const [name, value] of rows) list.append(element("dt", "", name), element("dd", "", value));
    return [list];
  }

  function engineRows(engine, uptimeSeconds) {
    const tick = object(engine.tick);
    return figureList([
      ["State", engine.open === false ? "closed" : "open"],
      ["Frames a second", fixed(engine.fps, 2)],
      ["Late ticks", fixed(engine.lateTicks, 0)],
      ["Repeated frames", fixed(engine.repeatedFrames, 0)],
      ["CPU load", fixed(engine.cpuLoad * 100, 0, " %")],
      ["Tick p50 / p99 / max", [tick.p50Ms, tick.p99Ms, tick.maxMs].map(ms => fixed(ms, 1)).join(" / ") + " ms"],
      ["Console up", clock(uptimeSeconds)],
    ]);
  }

  function publisherRow(publisher) {
    const players = words(publisher.players, "0") + (publisher.players === 1 ? " player" : " players");
    const details = [words(publisher.addr), fixed(publisher.kbps, 0, " kbit/s"), players];
    const name = words(publisher.app) + "/" + words(publisher.name);
    return outputRow(name, { state: "Up", upSeconds: publisher.seconds }, details);
  }

  function incomeRows(income) {
    const isRunning = income.running === true, publishers = objects(income.publishers);
    const rows = [["State", isRunning ? "running" : words(income.failure) || "not running"]];
    if (isRunning) rows.push(["RTMP", words(income.address) + ":" + words(income.rtmpPort)]);
    rows.push(["Publishers", String(publishers.length)]);
    return [...figureList(rows), ...publishers.map(publisherRow)];
  }

  // Nothing is rebuilt while nothing changed.
  const filled = new Map();
  function fill(id, source, make) {
    const text = JSON.stringify(source);
    if (filled.get(id) === text) return;
    filled.set(id, text);
    byId(id).classList.remove("empty");
    byId(id).replaceChildren(...make());
  }

  function showStatus(status) {
    const sections = object(status.sections), { uptimeSeconds } = status;
    const slots = object(sections.outputs), engine = object(sections.engine), income = object(sections.incomeServer);
    for (const [name, output] of Object.entries(outputs)) output.report = output.waiting ? {} : object(slots[name]);
    showOutputButtons();
    fill("outputs", slots, () => outputRows(slots));
    fill("engine", [engine, Math.floor(uptimeSeconds)], () => engineRows(engine, uptimeSeconds));
    fill("income", income, () => incomeRows(income));
    if (!byId("figures").open) return;
    fill("sections", sections, () => Object.entries(sections).map(([name, section]) => sectionOf(name, section)));
  }

  async function followStatus() {
    for (let round = 0; ; ++round) {
      await untilVisible();
      try {
        const { body } = await load("/status.json", "json", 5000);
        if (body === null) throw new Error("no status");
        showStatus(object(body));
        if (byId("log").open && round % 2 === 0) showLog((await load("/log.txt", "text", 5000)).body);
        document.body.classList.remove("status-stale");
      } catch {
        document.body.classList.add("status-stale");
      }
      await sleep(1000);
    }
  }

  // ---- all figures ----

  // "lateTicks" reads as "Late ticks", "rtmpPort" as "RTMP port".
  const written = { mib: "MiB", ms: "ms", dbtp: "dBTP" };
  for (const word of "pgm pvm rtmp http fps url id cpu ip lufs".split(" ")) written[word] = word.toUpperCase();
  function title(key) {
    const parts = String(key).replace(/_/g, " ").replace(/([a-z0-9])([A-Z])/g, "$1 $2").toLowerCase().split(" ");
    const text = parts.map(part => Object.hasOwn(written, part) ? written[part] : part).join(" ");
    return text.charAt(0).toUpperCase() + text.slice(1);
  }

  function valueText(value) {
    if (value === null || value === undefined || value === "") return "\u2013";
    if (typeof value === "boolean") return value ? "yes" : "no";
    if (isNumber(value)) return String(Math.round(value * 1000) / 1000);
    return typeof value === "object" ? JSON.stringify(value) : String(value);
  }

  // A table for whatever the console tells; what has parts becomes a table in a cell.
  function tableOf(value) {
    const table = element("table");
    for (const [key, part] of Object.entries(value)) {
      const row = table.insertRow(), head = element("th", "", title(key)), data = row.insertCell();
      head.scope = "row";
      row.prepend(head);
      const hasParts = isObject(part) ? Object.keys(part).length > 0 : objects(part).length > 0;
      data.append(hasParts ? tableOf(part) : valueText(part));
    }
    return table;
  }

  function sectionOf(name, value) {
    const made = element("div");
    made.append(element("h2", "", title(name)), tableOf(isObject(value) ? value : { value }));
    return made;
  }

  // ---- log ----

  let logLines = [];
  function showLog(text) {
    if (typeof text !== "string") return;
    const lines = text.replace(/\n$/, "").split("\n"), box = byId("log-lines");
    const atEnd = box.scrollHeight - box.scrollTop - box.clientHeight < 24;
    // Lines that stay are kept, so that a selection and the place of reading stay.
    let gone = 0;
    while (gone < logLines.length && !logLines.slice(gone).every((line, index) => line === lines[index])) ++gone;
    for (let index = 0; index < gone; ++index) box.firstChild.remove();
    let look = box.lastChild ? box.lastChild.className : "";
    for (const line of lines.slice(logLines.length - gone)) {
      const level = /^\S+ \S+ (\w+) /.exec(line);
      // Further lines of a message are indented and have no level of their own.
      if (level) look = { warning: "warn", critical: "bad", fatal: "bad", debug: "muted" }[level[1]] || "";
      box.append(element("div", look, line));
    }
    logLines = lines;
    if (atEnd) box.scrollTop = box.scrollHeight;
  }

  startToken();
  startActions();
  drawMeterScale();
  showTakes();
  showOutputButtons();
  setInterval(showAge, 500);
  followEvents();
  followPictures("/program.jpg", showProgramPicture, missProgramPicture);
  followPictures("/channels.jpg", showChannelPictures, () => {});
  followStatus();
})();
