// The page: files are dropped or chosen; each one has a tab.
import { AreaView } from "./area_view";
import { Client } from "./client";
import { button, complain, printable, say } from "./dom";
import { RecordsView } from "./records_view";

const MOST_AREA_BYTES = 64 << 20;

interface View {
  readonly root: HTMLElement;
  readonly hasUnsaved: boolean;
  load(): Promise<void>;
  restart(): Promise<void>;
  close(): void;
}

const client = new Client();
// For the user's scripts in the console of the browser.
(window as unknown as { surveydata: Client }).surveydata = client;
const tabs = document.querySelector<HTMLElement>("#tabs")!;
const views = document.querySelector<HTMLElement>("#views")!;
const start = document.querySelector<HTMLElement>("#start")!;
const opened = new Map<HTMLElement, View>();

function show(tab: HTMLElement): void {
  for (const [each, view] of opened) {
    each.setAttribute("aria-selected", String(each === tab));
    each.tabIndex = each === tab ? 0 : -1;
    view.root.hidden = each !== tab;
  }
}

let count = 0;
async function add(name: string, view: View): Promise<void> {
  const number = ++count;
  const tab = button(printable(name), () => show(tab), {
    role: "tab", id: `tab-${number}`, "aria-controls": `view-${number}`,
  });
  view.root.id = `view-${number}`;
  view.root.setAttribute("role", "tabpanel");
  view.root.setAttribute("aria-labelledby", tab.id);
  opened.set(tab, view);
  tabs.append(tab);
  views.append(view.root);
  start.classList.add("small");
  document.querySelector<HTMLElement>("#close")!.hidden = false;
  show(tab);
  await view.load();
}

/**
 * Areas are JSON, in which no byte is 0; all other files are read as records, which reports what is
 * wrong with them.
 */
async function isArea(file: File): Promise<boolean> {
  const head = new TextDecoder().decode(await file.slice(0, 4096).arrayBuffer());
  return /^\s*\{[^\0]*$/.test(head);
}

async function open(file: File): Promise<void> {
  const name = printable(file.name);
  say("");
  try {
    if (file.size === 0) {
      say(`${name} is empty.`, true);
    } else if (/\.(csv|txt)$/i.test(file.name) && current() instanceof AreaView) {
      await (current() as AreaView).addDirections(file);
    } else if (/\.csv$/i.test(file.name)) {
      say(`${name}: Open an area first; the directions of a table are tested against it.`, true);
    } else if (await isArea(file)) {
      if (file.size > MOST_AREA_BYTES) throw new Error("The area file is too large.");
      const area = await AreaView.open(client, file.name, await file.text());
      await add(file.name, area);
    } else {
      await add(file.name, new RecordsView(client, file));
    }
  } catch (error) {
    complain(error, name);
  }
}

function current(): View | undefined {
  for (const [tab, view] of opened) {
    if (tab.getAttribute("aria-selected") === "true") return view;
  }
  return undefined;
}

async function openAll(files: Iterable<File>): Promise<void> {
  for (const file of [...files]) await open(file);
}

tabs.addEventListener("keydown", (event) => {
  const all = [...opened.keys()];
  const at = all.findIndex((tab) => tab.getAttribute("aria-selected") === "true");
  const step = event.key === "ArrowRight" ? 1 : event.key === "ArrowLeft" ? -1 : 0;
  const next = all[(at + step + all.length) % all.length];
  if (step === 0 || !next) return;
  event.preventDefault();
  show(next);
  next.focus();
});

const input = document.querySelector<HTMLInputElement>("#files")!;
input.addEventListener("change", () => {
  void openAll(input.files ?? []);
  input.value = "";
});
document.querySelector("#new-area")!.addEventListener("click", () => {
  void AreaView.open(client, "area.json",
    '{"kind": "polygon", "unit": "gon", "hzStep": 0.05, "vStep": 0.05, "points": []}')
    .then((area) => add("area.json", area))
    .catch((error: unknown) => complain(error));
});
document.querySelector("#close")!.addEventListener("click", () => {
  for (const [tab, view] of opened) {
    if (tab.getAttribute("aria-selected") !== "true") continue;
    if (view.hasUnsaved && !confirm("Close this file and lose its unsaved changes?")) return;
    view.close();
    view.root.remove();
    tab.remove();
    opened.delete(tab);
  }
  const [first] = opened.keys();
  if (first) show(first);
  document.querySelector<HTMLElement>("#close")!.hidden = !first;
  (first ?? input).focus(); // the button may be gone
});

addEventListener("dragover", (event) => {
  event.preventDefault();
  document.body.classList.add("dropping");
});
addEventListener("dragleave", () => document.body.classList.remove("dropping"));
addEventListener("drop", (event) => {
  event.preventDefault();
  document.body.classList.remove("dropping");
  void openAll(event.dataTransfer?.files ?? []);
});
addEventListener("beforeunload", (event) => {
  if ([...opened.values()].some((view) => view.hasUnsaved)) event.preventDefault();
});

// Opens the files again, one after the other. A file that makes the module fail again is left out:
// its changes are in the page, and can still be saved or undone.
let restarts = 0;
let restarting: View | undefined;
const broken = new WeakSet<View>();
client.onRestart = () => {
  if (restarting) broken.add(restarting);
  say(restarting
    ? "The module failed again when a file was opened in it. Your changes are kept: save or undo them."
    : "The module failed and was started again. Your changes are kept.", true);
  const order = ++restarts;
  void (async () => {
    for (const view of opened.values()) {
      if (broken.has(view)) continue;
      restarting = view;
      await view.restart().catch(() => undefined); // `say` was called where it failed
      if (order !== restarts) return;
    }
    restarting = undefined;
  })();
};
// The restart repeats the requests to a worker that ended.
addEventListener("unhandledrejection", (event) => {
  event.preventDefault();
  complain(event.reason);
});

// A file that `surveydata view` has embedded in the page.
const embedded = document.querySelector<HTMLTemplateElement>("template#file");
if (embedded) {
  const name = embedded.dataset["name"] ?? "file";
  const text = embedded.content.textContent ?? "";
  embedded.remove();
  client.ask<Blob>("decode", text).then(
    (bytes) => open(new File([bytes], name)),
    (error: unknown) => complain(error, printable(name)),
  );
}
