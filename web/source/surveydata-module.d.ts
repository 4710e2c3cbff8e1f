declare module "surveydata-module" {
  /** Emscripten's start of the module. */
  export default function instantiate(options: object): Promise<unknown>;
}
