declare module "surveydata-module" {
  /** Instantiates the module; Emscripten generates it. */
  export default function instantiate(options: object): Promise<unknown>;
}
